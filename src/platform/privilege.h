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

/// The same for a library about to be loaded. One that lies in the very folder that this layer was loaded from, and
/// whose owner and permissions are no wider than this layer's, is trusted as well: whoever could exchange it could
/// exchange code that runs already.
ORVO_PLATFORM_API Status CheckTrustedLibrary(std::string_view system_path);

/// Gives up, for good, every privilege that the process has beyond those of its user: identities that it borrowed, all
/// capabilities, root's included, and the right to gain any by running another program. To be called before a second
/// thread is started, as threads have privileges of their own. The platform's error when one could not be given up.
ORVO_PLATFORM_API Status GiveUpPrivileges();

}  // namespace orvo
