#pragma once

#include <cstdint>

#include "platform/export.h"

namespace orvo {

/// The 32-bit result of every interface operation: negative values are failures.
using Status = std::int32_t;

constexpr Status MakeStatus(std::uint32_t bits) {
  return static_cast<Status>(bits);
}

inline constexpr Status S_OK = 0;
inline constexpr Status S_FALSE = 1;
inline constexpr Status E_NOTIMPL = MakeStatus(0x80004001);
inline constexpr Status E_NOINTERFACE = MakeStatus(0x80004002);
inline constexpr Status E_POINTER = MakeStatus(0x80004003);
inline constexpr Status E_FAIL = MakeStatus(0x80004005);
inline constexpr Status E_UNEXPECTED = MakeStatus(0x8000FFFF);
inline constexpr Status E_OUTOFMEMORY = MakeStatus(0x8007000E);
inline constexpr Status E_INVALIDARG = MakeStatus(0x80070057);
inline constexpr Status DISP_E_TYPEMISMATCH = MakeStatus(0x80020005);
inline constexpr Status DISP_E_OVERFLOW = MakeStatus(0x8002000A);
inline constexpr Status STG_E_INVALIDFUNCTION = MakeStatus(0x80030001);
inline constexpr Status STG_E_MEDIUMFULL = MakeStatus(0x80030070);
inline constexpr Status CLASS_E_NOAGGREGATION = MakeStatus(0x80040110);
inline constexpr Status CLASS_E_CLASSNOTAVAILABLE = MakeStatus(0x80040111);
inline constexpr Status REGDB_E_CLASSNOTREG = MakeStatus(0x80040154);
inline constexpr Status CO_E_CLASSSTRING = MakeStatus(0x800401F3);

constexpr bool Failed(Status status) {
  return status < 0;
}
constexpr bool Succeeded(Status status) {
  return status >= 0;
}

/// Platform error codes that callers tell apart. Every other errno value e becomes kErrorErrnoBase + e.
enum PlatformError : std::uint32_t {
  kErrorFileNotFound = 2,
  kErrorPathNotFound = 3,
  kErrorTooManyOpenFiles = 4,
  kErrorAccessDenied = 5,
  kErrorWriteProtected = 19,
  kErrorSharingViolation = 32,
  kErrorDiskFull = 112,
  kErrorInvalidName = 123,
  kErrorFolderNotEmpty = 145,
  kErrorAlreadyExists = 183,
  kErrorNameTooLong = 206,
  kErrorIsAFolder = 267 + 1,
  kErrorNotAFolder = 267,
  kErrorNoTranslation = 1113,
  kErrorErrnoBase = 0x4000,
};

/// The status of a platform error code e: 0x80070000 + (e & 0xFFFF).
constexpr Status StatusFromError(std::uint32_t error) {
  return MakeStatus(0x80070000U | (error & 0xFFFFU));
}

/// The status of an errno value; E_OUTOFMEMORY for ENOMEM, E_INVALIDARG for EINVAL, E_FAIL for 0.
ORVO_PLATFORM_API Status StatusFromErrno(int error);

}  // namespace orvo
