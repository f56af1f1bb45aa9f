#pragma once

#include <memory>
#include <string>

#include "app/refused_page.h"
#include "app/served_folder.h"

namespace orvo::app {

/// Shows the report of a folder to browsers of this machine over HTTP. Files can be read, and nothing else; what is no
/// file of a report is not found. A request whose host is another name than this machine's is refused, so that no
/// page of the network gets at a report by pointing a name of its own here.
class ReportServer {
 public:
  /// `folder` must outlive the server. Of its pages, those run that have no script but `trusted` ones.
  ReportServer(const ServedFolder& folder, TrustedPages trusted);
  ReportServer(const ReportServer&) = delete;
  ReportServer& operator=(const ReportServer&) = delete;
  ~ReportServer();

  /// True for a page of the front end that is there and is not shown, as its script is not trusted.
  bool Refuses(const std::string& page) const;
  /// Takes a port of the loopback address, a free one for 0. Raises a CommandError when it cannot be had.
  void Bind(int port);
  /// "http://127.0.0.1:8080/", once bound.
  std::string Address() const;
  /// Answers requests until Stop is called. False when the system ended it earlier.
  bool Run();
  /// Ends Run, now or as soon as it begins; requests under way are broken off. From any thread.
  void Stop();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orvo::app
