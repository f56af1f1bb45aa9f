#include "platform/status.h"

#include <cerrno>

namespace orvo {
namespace {

struct Mapping {
  int error;
  Status status;
};

constexpr Mapping kMappings[] = {
    {0, E_FAIL},
    {ENOENT, StatusFromError(kErrorFileNotFound)},
    {ENOTDIR, StatusFromError(kErrorNotAFolder)},
    {EMFILE, StatusFromError(kErrorTooManyOpenFiles)},
    {ENFILE, StatusFromError(kErrorTooManyOpenFiles)},
    {EACCES, StatusFromError(kErrorAccessDenied)},
    {EPERM, StatusFromError(kErrorAccessDenied)},
    {ELOOP, StatusFromError(kErrorAccessDenied)},
    {EROFS, StatusFromError(kErrorWriteProtected)},
    {EWOULDBLOCK, StatusFromError(kErrorSharingViolation)},
    {ETXTBSY, StatusFromError(kErrorSharingViolation)},
    {ENOSPC, StatusFromError(kErrorDiskFull)},
    {EDQUOT, StatusFromError(kErrorDiskFull)},
    {EFBIG, StatusFromError(kErrorDiskFull)},
    {ENOTEMPTY, StatusFromError(kErrorFolderNotEmpty)},
    {EEXIST, StatusFromError(kErrorAlreadyExists)},
    {ENAMETOOLONG, StatusFromError(kErrorNameTooLong)},
    {EISDIR, StatusFromError(kErrorIsAFolder)},
    {EILSEQ, StatusFromError(kErrorNoTranslation)},
    {ENOMEM, E_OUTOFMEMORY},
    {EINVAL, E_INVALIDARG},
};

}  // namespace

Status StatusFromErrno(int error) {
  for (const Mapping& mapping : kMappings) {
    if (mapping.error == error) return mapping.status;
  }
  return StatusFromError(kErrorErrnoBase + static_cast<std::uint32_t>(error));
}

}  // namespace orvo
