// XML reports beside a bare pugixml program that builds and saves the same trees, in time and in memory, and what a
// report costs in a folder that holds many earlier ones.

#include <benchmark/benchmark.h>
#include <fmt/core.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <pugixml.hpp>
#include <vector>

#include "bench/support/ratio_reporter.h"
#include "platform/clock.h"
#include "platform/path.h"
#include "prefs/stats_output_prefs.h"
#include "tests/support/scripted_engine.h"
#include "xml/xml_stats_output.h"

namespace orvo::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kStart = 1'700'000'000;  // seconds since 1970
constexpr std::uint64_t kTotalBytes = 123'456'789'012;
constexpr std::uint64_t kTotalPackets = 234'567'890;

std::uint64_t At(std::int64_t seconds) {
  return TimeFromUnix(seconds * 1'000'000'000);
}

NodeEntry MakeNode(test::Script& script, std::uint32_t i) {
  NodeEntry node;
  node.address = script.AddIp(10, static_cast<std::uint8_t>(i >> 16), static_cast<std::uint8_t>(i >> 8),
                              static_cast<std::uint8_t>(i));
  node.first_time_sent = At(kStart + i % 3600);
  node.last_time_sent = At(kStart + 3600 + i % 3600);
  node.first_time_received = At(kStart + 10 + i % 3600);
  node.last_time_received = At(kStart + 4000 + i % 3600);
  node.packets_sent = i % 5000;
  node.bytes_sent = std::uint64_t{i} * 1500 + 1;
  node.packets_received = i % 7000;
  node.bytes_received = std::uint64_t{i} * 700 + 1;
  node.broadcast_packets = i % 10;
  node.broadcast_bytes = i % 1000;
  node.min_size_sent = 60;
  node.max_size_sent = 1514;
  node.min_size_received = 64;
  node.max_size_received = 1514;
  return node;
}

/// Nodes, and conversations between them: of each with the ones behind it.
test::Script MakeScript(std::uint32_t nodes, std::uint32_t conversations) {
  test::Script script;
  script.total_packets = kTotalPackets;
  script.total_bytes = kTotalBytes;
  const std::uint32_t protocol = script.AddProtocol(7);
  ProtocolEntry& entry = script.protocols.emplace_back();
  entry.key = protocol;
  entry.bytes = kTotalBytes / 2;
  for (std::uint32_t i = 0; i < nodes; ++i) script.nodes.push_back(MakeNode(script, i));
  for (std::uint32_t i = 0; i < conversations; ++i) {
    const std::uint32_t source = i % nodes;
    const std::uint32_t destination = (i * 7 + i / nodes + 1) % nodes;
    script.conversations.push_back({.ends = {.source = script.nodes[source].address,
                                             .destination = script.nodes[destination].address,
                                             .protocol = protocol},
                                    .packets = i % 1000 + 1,
                                    .bytes = std::uint64_t{i} * 64 + 64});
  }
  return script;
}

/// A folder that is gone with the program.
const std::string& Folder() {
  static const struct Temporary {
    std::string path = (fs::temp_directory_path() / "orvo-bench-XXXXXX").string();
    pid_t owner = getpid();
    Temporary() {
      if (!mkdtemp(path.data())) std::abort();
    }
    ~Temporary() {
      if (getpid() == owner) fs::remove_all(path);
    }
  } folder;
  return folder.path;
}

void EmptyFolder() {
  for (const fs::directory_entry& entry : fs::directory_iterator(Folder())) fs::remove_all(entry.path());
}

std::string FileBytes(const std::string& name) {
  std::ifstream file(Folder() + "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The engine, the method and its switches: IP nodes, and conversations when wanted.
struct Report {
  test::ScriptedEngine engine;
  ComPtr<IStatsContext> context;
  ComPtr<IStatsOutputMethod> method;

  Report(std::uint32_t nodes, std::uint32_t conversations, bool conversations_only = false) {
    engine.live = MakeScript(nodes, conversations);
    engine.at_snapshot = test::Script();
    engine.fixed = true;
    engine.snapshot_time = At(kStart + 10'000);
    engine.protocol_tree[7] = {.name = u"HTTPS", .parent = 0};
    context = engine.Context();
    if (Failed(CreateXmlStatsOutput(IStatsOutputMethod::kIid, method.OutVoid()))) std::abort();
    ComPtr<IStatsOutputPrefs> switches;
    if (Failed(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, switches.OutVoid()))) std::abort();
    for (SwitchId off : {kSwitchOutputNodeHierarchy, kSwitchNodeTypeIPv6, kSwitchNodeTypeDEC, kSwitchNodeTypeApple,
                         kSwitchNodeTypeIPX, kSwitchNodeTypePhysical, kSwitchOutputGraphs, kSwitchOutputExpertStats}) {
      switches->SetPreference(off, 0);
    }
    switches->SetPreference(kSwitchOutputNodeDetails, conversations != 0);
    switches->SetPreference(kSwitchOutputConversationsOnly, conversations_only);
    switches->SetPreference(kSwitchNodeTypeIP, 1);
    method->SetFormat(nullptr, nullptr, switches.get(), nullptr);
    // What the engine makes once is not the writer's cost.
    ComPtr<IAddressTable> table;
    if (context->GetAddressTable(table.Out()) != S_OK) std::abort();
  }

  void WriteOn() {
    if (method->Output(Bstr(PathFromSystem(Folder() + "/")).get(), context.get(), nullptr) != S_OK) std::abort();
  }
  void Write() {
    EmptyFolder();
    WriteOn();
  }
};

/// The bare program: it knows the form of the texts beforehand, and does nothing but build the tree and save it.
class BareProgram {
 public:
  explicit BareProgram(const test::Script& script) : script_(script) {
    std::time_t now = kStart;
    offset_ = localtime(&now)->tm_gmtoff;
    for (std::size_t i = 0; i < script.nodes.size(); ++i) node_of_[script.nodes[i].address] = &script.nodes[i];
  }

  void WriteNodes() {
    pugi::xml_document document;
    Declare(document);
    pugi::xml_node category = document.append_child("StatsReport").append_child("NodeStatistics");
    category.append_attribute("Version") = "2.0";
    Number(Summary(category), "NodeCount", script_.nodes.size());
    pugi::xml_node type = Type(category.append_child("Stats"));
    for (const NodeEntry& node : script_.nodes) NodeRow(node, type.append_child("NodeStat"));
    Save(document, "floor.xml");
  }

  void WriteConversations(bool grouped) {
    pugi::xml_document document;
    Declare(document);
    pugi::xml_node root = document.append_child("ConversationStatistics");
    root.append_attribute("Version") = grouped ? "1.0" : "1.1";
    pugi::xml_node summary = Summary(root);
    Number(summary, "NodeCount", script_.nodes.size());
    Number(summary, "ConvoCount", script_.conversations.size());
    pugi::xml_node type = Type(root.append_child("Stats"));
    if (grouped) {
      Grouped(type);
    } else {
      for (const auto& one : script_.conversations) Conversation(one, type.append_child("ConversationStat"), false);
    }
    Save(document, "floor.xml");
  }

 private:
  void Declare(pugi::xml_document& document) {
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "utf-8";
  }
  void Save(const pugi::xml_document& document, const char* name) {
    if (!document.save_file((Folder() + "/" + name).c_str(), "  ")) std::abort();
  }
  void Number(pugi::xml_node parent, const char* name, std::uint64_t value) {
    parent.append_child(name).text().set(static_cast<unsigned long long>(value));
  }
  void Ratio(pugi::xml_node parent, const char* name, std::uint64_t part, std::uint64_t whole) {
    char digits[64];
    *std::to_chars(digits, digits + 63,
                   whole == 0 ? 0. : static_cast<double>(static_cast<float>(part) / static_cast<float>(whole)),
                   std::chars_format::fixed, 6)
         .ptr = '\0';
    parent.append_child(name).text().set(digits);
  }
  void Time(pugi::xml_node parent, const char* name, std::uint64_t time) {
    const std::int64_t local = UnixFromTime(time) / 1'000'000'000 + offset_;
    const std::int64_t day = local / 86'400;
    if (day != day_) {
      day_ = day;
      std::time_t seconds = day * 86'400;
      const std::tm* date = gmtime(&seconds);
      date_ = fmt::format("{}/{}/{} ", date->tm_mon + 1, date->tm_mday, date->tm_year + 1900);
    }
    char text[64];
    *fmt::format_to(text, "{}{:02}:{:02}:{:02}", date_, local % 86'400 / 3600, local % 3600 / 60, local % 60) = '\0';
    parent.append_child(name).text().set(text);
  }
  void Address(pugi::xml_node node, std::uint32_t index) { node.text().set(AddressText(index).c_str()); }
  std::string AddressText(std::uint32_t index) {
    const auto& bytes = script_.addresses[index].bytes;
    return fmt::format("{}.{}.{}.{}", bytes[0], bytes[1], bytes[2], bytes[3]);
  }

  pugi::xml_node Summary(pugi::xml_node category) {
    pugi::xml_node summary = category.append_child("Summary");
    Time(summary, "TimeSaved", At(kStart + 10'000));
    Number(summary, "Packets", kTotalPackets);
    Number(summary, "Bytes", kTotalBytes);
    return summary;
  }
  pugi::xml_node Type(pugi::xml_node stats) {
    pugi::xml_node type = stats.append_child("Type");
    type.append_attribute("Name") = "IP";
    return type;
  }

  void NodeRow(const NodeEntry& node, pugi::xml_node row) {
    Address(row.append_child("Addr"), node.address);
    Time(row, "FirstTimeSent", node.first_time_sent);
    Time(row, "LastTimeSent", node.last_time_sent);
    Time(row, "FirstTimeReceived", node.first_time_received);
    Time(row, "LastTimeReceived", node.last_time_received);
    Number(row, "PacketsSent", node.packets_sent);
    Number(row, "BytesSent", node.bytes_sent);
    Ratio(row, "PctBytesSent", node.bytes_sent, kTotalBytes);
    Number(row, "PacketsReceived", node.packets_received);
    Number(row, "BytesReceived", node.bytes_received);
    Ratio(row, "PctBytesReceived", node.bytes_received, kTotalBytes);
    Number(row, "BroadcastPackets", node.broadcast_packets);
    Number(row, "BroadcastBytes", node.broadcast_bytes);
    Number(row, "MulticastPackets", node.multicast_packets);
    Number(row, "MulticastBytes", node.multicast_bytes);
    Number(row, "MinSizeSent", node.min_size_sent);
    Number(row, "MaxSizeSent", node.max_size_sent);
    Number(row, "MinSizeReceived", node.min_size_received);
    Number(row, "MaxSizeReceived", node.max_size_received);
  }

  void Conversation(const test::ScriptedConversation& one, pugi::xml_node row, bool grouped) {
    Number(row, "Bytes", one.bytes);
    Number(row, "Packets", one.packets);
    if (!grouped) Address(row.append_child("SourceAddress"), one.ends.source);
    Ratio(row, "PctBytesSent", one.bytes, node_of_[one.ends.source]->bytes_sent);
    Address(row.append_child("DestinationAddress"), one.ends.destination);
    Ratio(row, "PctBytesReceived", one.bytes, node_of_[one.ends.destination]->bytes_received);
    row.append_child("Protocol").text().set(protocol_.c_str());
    Ratio(row, "PctBytesProtocol", one.bytes, kTotalBytes / 2);
  }

  void Grouped(pugi::xml_node type) {
    std::map<std::uint32_t, std::size_t> places;
    std::vector<std::pair<pugi::xml_node, std::uint64_t>> groups;
    for (const auto& one : script_.conversations) {
      const auto [place, is_new] = places.try_emplace(one.ends.source, groups.size());
      if (is_new) {
        groups.emplace_back(type.append_child("SourceAddress"), 0);
        groups.back().first.append_attribute("Name") = AddressText(one.ends.source).c_str();
      }
      auto& [group, bytes] = groups[place->second];
      bytes += one.bytes;
      Conversation(one, group.append_child("ConversationStat"), true);
    }
    for (auto& [group, bytes] : groups) Ratio(group, "TotalPctBytesSent", bytes, kTotalBytes);
  }

  const test::Script& script_;
  std::map<std::uint32_t, const NodeEntry*> node_of_;
  std::int64_t offset_ = 0;
  std::int64_t day_ = -1;
  std::string date_;
  std::string protocol_ = "HTTPS";
};

/// One comparison: a report, its bare program, the file that both write, and the part of it that must be the same.
struct Case {
  const char* name;
  std::uint32_t nodes;
  std::uint32_t conversations;
  const char* file;
  std::string element;
  void (*bare)(BareProgram&);

  Report& report() const {
    static std::map<std::string, std::unique_ptr<Report>> reports;
    std::unique_ptr<Report>& made = reports[name];
    if (!made) made = std::make_unique<Report>(nodes, conversations, conversations != 0);
    return *made;
  }
};

const Case kCases[] = {
    {"index_of_nodes", 100'000, 0, "StatsReport.xml", "NodeStatistics", [](BareProgram& bare) { bare.WriteNodes(); }},
    {"grouped_conversations", 1'000, 5'000, "ConversationStatistics.xml", "ConversationStatistics",
     [](BareProgram& bare) { bare.WriteConversations(true); }},
    {"flat_conversations", 100'000, 1'000'000, "ConversationStatistics.xml", "ConversationStatistics",
     [](BareProgram& bare) { bare.WriteConversations(false); }},
};

/// The comparison means something only when both write the same.
bool SameBytes(const Case& one) {
  const auto part = [&](const std::string& bytes) {
    const std::size_t begin = bytes.find("<" + one.element);
    const std::size_t end = bytes.rfind("</" + one.element);
    return begin < end ? bytes.substr(begin, end - begin) : std::string();
  };
  one.report().Write();
  const std::string written = part(FileBytes(one.file));
  BareProgram bare(one.report().engine.live);
  one.bare(bare);
  const std::string expected = part(FileBytes("floor.xml"));
  if (!written.empty() && written == expected) return true;
  const std::size_t at = static_cast<std::size_t>(std::ranges::mismatch(written, expected).in1 - written.begin());
  std::fprintf(stderr, "%s: the bare program writes other bytes than the report:\n%s\n-- instead of --\n%s\n", one.name,
               written.substr(at < 100 ? 0 : at - 100, 300).c_str(),
               expected.substr(at < 100 ? 0 : at - 100, 300).c_str());
  return false;
}

long Kilobytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field)) return std::atol(line.c_str() + field.size() + 1);
  }
  return 0;
}

/// By how much work raises the peak of resident memory, in a process of its own.
long PeakOf(const std::function<void()>& work) {
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    std::ofstream("/proc/self/clear_refs") << '5';  // the peak begins anew
    const long before = Kilobytes("VmRSS");
    work();
    const long more = Kilobytes("VmHWM") - before;
    (void)!write(ends[1], &more, sizeof more);
    _exit(0);
  }
  long more = 0;
  (void)!read(ends[0], &more, sizeof more);
  close(ends[0]);
  close(ends[1]);
  waitpid(child, nullptr, 0);
  return more;
}

void PrintMemory(const Case& one) {
  Report& report = one.report();
  BareProgram bare(report.engine.live);
  const long written = PeakOf([&] { report.Write(); });
  const long floor = PeakOf([&] { one.bare(bare); });
  std::printf("%-24s peak memory %8ld KiB, floor %8ld KiB, ratio %.2f\n", one.name, written, floor,
              static_cast<double>(written) / static_cast<double>(floor));
}

void Register(const Case& one) {
  const auto add = [](const std::string& name, auto work) {
    benchmark::RegisterBenchmark(name.c_str(), work)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
  };
  add(one.name, [&one](benchmark::State& state) {
    EmptyFolder();
    for (auto _ : state) one.report().WriteOn();
  });
  add(std::string(one.name) + "/floor", [&one](benchmark::State& state) {
    BareProgram bare(one.report().engine.live);
    for (auto _ : state) one.bare(bare);
  });
}

/// What one more report costs in a folder that holds so many, with and without their histories.
void PrintGrowth() {
  constexpr int kReports = 1000;
  constexpr std::uint32_t kNodes = 50;
  Report report(kNodes, 0);
  report.engine.at_snapshot.reset();
  EmptyFolder();
  std::vector<double> times;
  for (int i = 0; i <= kReports; ++i) {
    const auto begin = std::chrono::steady_clock::now();
    report.WriteOn();
    times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
  }
  for (const int earlier : {1, 10, 100, 500, kReports}) {
    // The median of the reports around it.
    std::vector<double> near(times.begin() + std::max(1, earlier - 9), times.begin() + earlier + 1);
    std::nth_element(near.begin(), near.begin() + static_cast<std::ptrdiff_t>(near.size() / 2), near.end());
    std::printf("report of %u nodes behind %4d earlier ones: %7.1f ms\n", kNodes, earlier, near[near.size() / 2]);
  }
  std::uintmax_t bytes = 0;
  for (const char* file : {"NodeStatistics.xml", "SummaryStatistics.xml", "ProtocolStatistics.xml"}) {
    bytes += fs::file_size(Folder() + "/" + file);
  }
  std::printf("their histories hold %.1f MB then\n", static_cast<double>(bytes) / 1e6);
}

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) {
  using namespace orvo::bench;
  for (const Case& one : kCases) {
    if (!SameBytes(one)) return 1;
    PrintMemory(one);
    Register(one);
  }
  PrintGrowth();
  return RunWithRatios(argc, argv);
}
