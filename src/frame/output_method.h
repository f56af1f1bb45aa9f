#pragma once

#include <cstdint>
#include <string>

#include "engine/protocols.h"
#include "frame/stats_output_method.h"
#include "graphs/report_util.h"
#include "util/component_object.h"
#include "util/persist_xml.h"

namespace orvo {

/// What tells one output method from another where they otherwise do the same.
struct MethodTraits {
  Guid class_id;
  std::u16string_view settings_element;
  /// The text method: OutputLive refuses an empty folder, and the settings operations answer E_FAIL for arguments that
  /// the other methods answer with E_POINTER or the query's status.
  bool is_text_method = false;
};

/// One report to be written: where, and from which statistics.
struct ReportJob {
  std::u16string folder;
  IStatsContext* live = nullptr;
  /// The snapshot, or the live context where a report is written without one.
  IStatsContext* statistics = nullptr;
  IGraphCollection* graphs = nullptr;  ///< may be null
  Status availability = S_OK;
  bool from_live = false;
};

/// The part that all output methods share: their state, and how a report comes about. A class derived from it writes
/// the report itself. The object is used by one thread at a time; only Load and Save take its lock.
class OutputMethod : public ComponentObject<IStatsOutputMethod, IPersistXml> {
 public:
  /// Raises the status with which a name service cannot be created.
  explicit OutputMethod(const MethodTraits& traits);

  Status Output(BSTR folder, IStatsContext* context, IGraphCollection* graphs) final;
  Status ResetMark() final;
  Status SetFormat(BSTR extension, BSTR separator, IStatsOutputPrefs* preferences, BSTR template_root) final;
  Status OutputLive(IStatsContext* context, BSTR folder, IGraphCollection* graphs) final;
  Status SetInterval(std::uint32_t seconds) final;

  Status GetClassID(Guid* class_id) final;
  Status Load(IUnknown* document, IUnknown* node) final;
  Status Save(IUnknown* document, IUnknown* node) final;

 protected:
  ~OutputMethod() override = default;

  /// Keeps what this method needs of the texts that SetFormat was given.
  virtual void KeepFormat(std::u16string_view extension, std::u16string_view separator,
                          std::u16string_view template_root) = 0;
  /// Writes the report. Raises what ends the operation; contains what ends a section only.
  virtual void WriteReport(const ReportJob& job) = 0;

  /// The preferences given last; E_UNEXPECTED is raised when none has been given.
  IStatsOutputPrefs& preferences() const;
  std::uint64_t time_mark() const { return time_mark_; }
  std::uint32_t interval() const { return interval_; }
  ReportUtil& report_util() { return report_util_; }
  IProtocolNameService& protocol_names() const { return *protocol_names_; }

 private:
  const MethodTraits& traits_;
  std::uint64_t time_mark_ = 0;
  ComPtr<IStatsOutputPrefs> preferences_;
  std::uint32_t interval_ = 0;
  ReportUtil report_util_;
  ComPtr<IProtocolNameService> protocol_names_;
};

/// Reads one switch; raises the read's failing status.
bool IsOn(IStatsOutputPrefs& preferences, std::uint32_t identifier);

}  // namespace orvo
