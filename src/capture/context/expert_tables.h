#pragma once

#include "capture/analysis/expert/expert_analysis.h"
#include "engine/tables.h"

namespace orvo {

// The tables of the expert analysis. Column numbers are fixed: reports name some of them. Severities are one of the
// four words of SeverityName; a flow or an application without events has the lowest.

/// A row for each flow, in the order in which they began.
ComPtr<ITable> MakeFlowTable(const FrozenExpert& expert);
/// A row for each application, that of most bytes first.
ComPtr<ITable> MakeApplicationTable(const FrozenExpert& expert);
/// A row for each kind of event that happened.
ComPtr<ITable> MakeEventCountTable(const FrozenExpert& expert);
/// A row for each event that the log still has, oldest first.
ComPtr<ITable> MakeEventLogTable(const FrozenExpert& expert);

}  // namespace orvo
