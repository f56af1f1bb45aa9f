#pragma once

#include "frame/module/class_table.h"

namespace orvo {

/// Answers an interface of a new factory of one of the module's classes. Its objects and its locks keep the module
/// loaded; the factory itself does not, as a holder who needs that locks it.
Status CreateModuleClassFactory(const ModuleClass& module_class, const Guid& iid, void** out);

}  // namespace orvo
