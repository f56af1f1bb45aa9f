#include "frame/snapshot.h"

#include "platform/class_factory.h"
#include "platform/error.h"
#include "util/stream_on_byte_stream.h"

namespace orvo {

ComPtr<IStatsContext> TakeSnapshot(IStatsContext* live, std::uint64_t* time_mark) {
  ComPtr<IStatsSnapshotSource> source;
  Check(Query(live, &source));

  CStreamOnCByteStream stream;
  Check(source->WriteStatistics(&stream, time_mark));
  Check(stream.Seek(0, IStream::kFromStart, nullptr));

  ComPtr<IStatsContext> snapshot;
  Check(CreateInstance(kStatsSnapshotClass, &snapshot));
  ComPtr<IPersistStream> persist;
  Check(Query(snapshot.get(), &persist));
  Check(persist->Load(&stream));
  return snapshot;
}

}  // namespace orvo
