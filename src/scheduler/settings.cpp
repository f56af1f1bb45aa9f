#include "scheduler/settings.h"

#include <string>
#include <type_traits>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr const char16_t* kElement = u"statsoutput";

/// One attribute: its name, the type that its text is converted to, and the setting behind it.
struct Attribute {
  const char16_t* name;
  VariantType type;
  Variant (*get)(const SchedulerSettings& settings);
  void (*set)(SchedulerSettings& settings, const Variant& value);
};

template <class T>
constexpr VariantType kNumberType = std::is_signed_v<T> ? VT_I4 : VT_UI4;

template <auto Member>
constexpr Attribute Switch(const char16_t* name) {
  return {name, VT_I4, [](const SchedulerSettings& settings) { return Variant(std::int32_t{settings.*Member}); },
          [](SchedulerSettings& settings, const Variant& value) {
            settings.*Member = std::get<std::int32_t>(value.value()) != 0;
          }};
}

template <auto Member>
constexpr Attribute Number(const char16_t* name) {
  using T = decltype((std::declval<SchedulerSettings>().*Member).load());
  return {name, kNumberType<T>, [](const SchedulerSettings& settings) { return Variant((settings.*Member).load()); },
          [](SchedulerSettings& settings, const Variant& value) { settings.*Member = std::get<T>(value.value()); }};
}

/// One half of an interval. The other may be set at the same time.
template <auto Member, auto Half>
constexpr Attribute IntervalHalf(const char16_t* name) {
  using T = std::remove_reference_t<decltype(std::declval<Interval>().*Half)>;
  return {name, kNumberType<T>,
          [](const SchedulerSettings& settings) { return Variant((settings.*Member).load().*Half); },
          [](SchedulerSettings& settings, const Variant& value) {
            Interval before = settings.*Member;
            Interval after{};
            do {
              after = before;
              after.*Half = std::get<T>(value.value());
            } while (!(settings.*Member).compare_exchange_weak(before, after));
          }};
}

template <auto Part>
constexpr Attribute Path(const char16_t* name) {
  return {name, VT_BSTR,
          [](const SchedulerSettings& settings) {
            return settings.paths.Read([](const ReportPaths& paths) { return Variant(paths.*Part); });
          },
          [](SchedulerSettings& settings, const Variant& value) {
            settings.paths.Change([&](ReportPaths& paths) { paths.*Part = value.text(); });
          }};
}

using Settings = SchedulerSettings;

/// In the order in which they are written and read.
constexpr Attribute kAttributes[] = {
    Switch<&Settings::enabled>(u"enabled"),
    Path<&ReportPaths::user>(u"userPath"),
    Path<&ReportPaths::report>(u"reportPath"),
    IntervalHalf<&Settings::output_interval, &Interval::value>(u"outputInterval"),
    IntervalHalf<&Settings::output_interval, &Interval::unit>(u"outputIntervalUnit"),
    Switch<&Settings::align_output>(u"alignOutput"),
    Switch<&Settings::new_set_enabled>(u"newSetEnabled"),
    IntervalHalf<&Settings::new_set_interval, &Interval::value>(u"newSetInterval"),
    IntervalHalf<&Settings::new_set_interval, &Interval::unit>(u"newSetIntervalUnit"),
    Switch<&Settings::align_new_set>(u"alignNewSet"),
    Switch<&Settings::keep_enabled>(u"keepEnabled"),
    Number<&Settings::keep>(u"keep"),
    Switch<&Settings::scheduled>(u"scheduled"),
    Switch<&Settings::notify>(u"notify"),
    Number<&Settings::reset_output>(u"ResetOutput"),
    Number<&Settings::output_type>(u"outputType"),
};

}  // namespace

Status LoadSettings(IXmlNode* node, SchedulerSettings* settings) {
  ComPtr<IXmlNode> found;
  if (const Status status = node->SelectSingleNode(kElement, found.Out()); status != S_OK) return status;
  ComPtr<IXmlElement> element;
  Check(Query(found.get(), &element));
  for (const Attribute& attribute : kAttributes) {
    Variant text;
    if (Check(element->GetAttribute(attribute.name, &text)) != S_OK) continue;
    Variant value;
    Check(ChangeType(&value, text, attribute.type));
    attribute.set(*settings, value);
  }
  return S_OK;
}

void SaveSettings(const SchedulerSettings& settings, IXmlDocument* document, IXmlNode* node) {
  ComPtr<IXmlElement> element;
  Check(document->CreateElement(kElement, element.Out()));
  for (const Attribute& attribute : kAttributes) {
    Check(element->SetAttribute(attribute.name, attribute.get(settings)));
  }
  Check(node->AppendChild(element.get()));
}

}  // namespace orvo
