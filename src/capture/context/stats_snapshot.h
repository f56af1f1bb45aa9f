#pragma once

#include "platform/unknown.h"

namespace orvo {

/// A snapshot object: IStatsContext and IPersistStream. Until it is loaded every question fails with E_UNEXPECTED; a
/// load that fails leaves what was loaded before. It holds the summary, the protocols and the totals; the keys of its
/// protocols resolve through the address table of the context that wrote it.
ComPtr<IUnknown> MakeStatsSnapshot();

}  // namespace orvo
