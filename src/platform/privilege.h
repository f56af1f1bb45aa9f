#pragma once

#include <string_view>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// True when the process has privileges that its user has not (set-user-id, file capabilities).
ORVO_PLATFORM_API bool HasBorrowedPrivileges();
/// Lets a test play such a process; nothing is granted or taken.
ORVO_PLATFORM_API void PretendBorrowedPrivileges(bool pretend);

/// S_OK when only root can change what the system path names: the file and every folder above it belong to root and
/// are writable by nobody else. Access denied otherwise; the platform's error when the path cannot be looked at.
ORVO_PLATFORM_API Status CheckTrustedPath(std::string_view system_path);

}  // namespace orvo
