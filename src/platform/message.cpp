#include "platform/message.h"

#include <cstring>
#include <string_view>

#include "platform/code_page.h"

namespace orvo {
namespace {

struct Message {
  Status status;
  std::u16string_view text;
};

constexpr Message kMessages[] = {
    {S_OK, u"The operation succeeded."},
    {S_FALSE, u"The operation succeeded, but what it looked for is not there."},
    {E_NOTIMPL, u"This is not implemented."},
    {E_NOINTERFACE, u"The object does not offer the interface that was asked for."},
    {E_POINTER, u"A required object or value is missing."},
    {E_FAIL, u"The operation failed."},
    {E_UNEXPECTED, u"An unexpected failure occurred."},
    {E_OUTOFMEMORY, u"There is not enough memory."},
    {E_INVALIDARG, u"A value is not valid."},
    {DISP_E_TYPEMISMATCH, u"A value has the wrong type."},
    {DISP_E_OVERFLOW, u"A number is out of range."},
    {STG_E_INVALIDFUNCTION, u"The stream cannot do this."},
    {STG_E_MEDIUMFULL, u"There is no room left in the stream."},
    {CLASS_E_NOAGGREGATION, u"The class cannot be part of an aggregate."},
    {CLASS_E_CLASSNOTAVAILABLE, u"The library does not offer this class."},
    {REGDB_E_CLASSNOTREG, u"The class is not registered."},
    {CO_E_CLASSSTRING, u"The class name or identifier is not known."},
    {StatusFromError(kErrorFileNotFound), u"The file does not exist."},
    {StatusFromError(kErrorPathNotFound), u"The folder of the path does not exist."},
    {StatusFromError(kErrorTooManyOpenFiles), u"Too many files are open."},
    {StatusFromError(kErrorAccessDenied), u"Access is denied."},
    {StatusFromError(kErrorWriteProtected), u"The medium is write-protected."},
    {StatusFromError(kErrorSharingViolation), u"Another program holds the file open."},
    {StatusFromError(kErrorDiskFull), u"The disk is full."},
    {StatusFromError(kErrorInvalidName), u"The name of the file or folder is not valid."},
    {StatusFromError(kErrorFolderNotEmpty), u"The folder is not empty."},
    {StatusFromError(kErrorAlreadyExists), u"The file or folder exists already."},
    {StatusFromError(kErrorNameTooLong), u"The name of the file or folder is too long."},
    {StatusFromError(kErrorNotAFolder), u"A part of the path is not a folder."},
    {StatusFromError(kErrorIsAFolder), u"The path names a folder, not a file."},
    {StatusFromError(kErrorNoTranslation), u"A character has no translation."},
};

}  // namespace

std::u16string SystemMessage(Status status) {
  for (const Message& message : kMessages) {
    if (message.status == status) return std::u16string(message.text);
  }
  // What StatusFromErrno leaves without a name of its own is told in the C library's words, untranslated.
  auto bits = static_cast<std::uint32_t>(status);
  std::uint32_t code = bits & 0xFFFFU;
  if ((bits >> 16) != 0x8007U || code <= kErrorErrnoBase) return {};
  const char* description = strerrordesc_np(static_cast<int>(code - kErrorErrnoBase));
  return description ? FromUtf8(description) + u"." : std::u16string();
}

}  // namespace orvo
