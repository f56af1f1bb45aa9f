#pragma once

#include <memory>

#include "tests/support/scripted_engine.h"

namespace orvo::test {

/// A script that lives as long as an object answers from it.
using SharedScript = std::shared_ptr<const Script>;

// The objects of the wireless categories and of the expert category; E_NOINTERFACE for a script without them.
Status MakeWirelessNodes(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeWirelessChannels(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeExpert(ScriptedEngine* engine, const SharedScript& script, void** out);

Status MakeTrafficHistory(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeSizeStats(ScriptedEngine* engine, const SharedScript& script, void** out);
ComPtr<IGraphCollection> MakeGraphs(ScriptedEngine* engine, const SharedScript& script);

}  // namespace orvo::test
