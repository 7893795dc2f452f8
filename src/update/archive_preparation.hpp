#pragma once

#include <exception>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>

#include "startup/folders.hpp"
#include "update/staged_archive.hpp"
#include "web/fetch_ahead.hpp"

namespace update {

// Expands an archive that is being fetched ahead as soon as it is there, on a thread of its own, while the
// one before it is applied. What nobody takes goes with it.
class ArchivePreparation {
 public:
  // `folders` outlive it.
  ArchivePreparation(std::shared_ptr<web::FetchAhead::Item> item, const startup::Folders& folders);

  const std::string& Url() const { return url_; }

  // Waits for it on a working thread, once the item is claimed or given up. Raises what is wrong with the
  // archive; nothing when it was not fetched ahead, when it could not be expanded for any other reason, or
  // when `stop` is requested. To be called once.
  std::unique_ptr<StagedArchive> Take(const std::stop_token& stop);

 private:
  void Run(std::shared_ptr<web::FetchAhead::Item> item, const std::stop_token& stop);

  const std::string url_;
  const startup::Folders& folders_;
  std::unique_ptr<StagedArchive> staged_;
  std::exception_ptr damage_;
  std::jthread thread_;  // last: joined before what it uses goes away
};

}  // namespace update
