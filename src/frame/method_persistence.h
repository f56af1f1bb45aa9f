#pragma once

#include <string_view>

#include "platform/unknown.h"

namespace orvo {

// An output method keeps no settings, so that its Load and Save only look at the document. Both take what IPersistXml
// gives them and the method's element; the caller holds the object lock.
//
// E_POINTER for a null argument and the status of a query that failed, both E_FAIL for the text method; E_OUTOFMEMORY
// when there is no memory for the element's name; else the status of the document's own operation.

/// Looks for the document element of that name: S_FALSE when it has another.
Status LoadMethodElement(IUnknown* document, IUnknown* node, std::u16string_view element, bool text_method);

/// Makes an element of that name and drops it again; the document stays as it is.
Status SaveMethodElement(IUnknown* document, IUnknown* node, std::u16string_view element, bool text_method);

}  // namespace orvo
