#pragma once

#include "platform/class_factory.h"

/// What the library exports, under the names of the platform's convention; exports.map lists the same four.
extern "C" {

/// A factory of one of the module's classes; see COrvoReportsModule::GetClassObject.
__attribute__((visibility("default"))) orvo::DllGetClassObjectFunction DllGetClassObject;
__attribute__((visibility("default"))) orvo::DllCanUnloadNowFunction DllCanUnloadNow;
__attribute__((visibility("default"))) orvo::DllRegisterServerFunction DllRegisterServer;
__attribute__((visibility("default"))) orvo::DllRegisterServerFunction DllUnregisterServer;
}
