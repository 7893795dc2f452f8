#include "update/archive_preparation.hpp"

#include <utility>

#include "base/runtime_error.hpp"

namespace update {

ArchivePreparation::ArchivePreparation(std::shared_ptr<web::FetchAhead::Item> item,
                                       const startup::Folders& folders)
    : url_(item->request.url),
      folders_(folders),
      thread_([this, item = std::move(item)](std::stop_token stop) mutable { Run(std::move(item), stop); }) {}

// A fault of this machine is left to the archive's own turn, when the one before it has made room.
void ArchivePreparation::Run(std::shared_ptr<web::FetchAhead::Item> item, const std::stop_token& stop) {
  const std::string archive = item->WaitFetched(stop);
  if (archive.empty()) return;
  try {
    staged_ = std::make_unique<StagedArchive>(archive, folders_.AppPath, folders_, stop);
  } catch (const base::RuntimeError& error) {
    if (error.Is(base::ErrorNumber::InvalidFileFormat) && platform::IsFile(archive))
      damage_ = std::current_exception();
  }
}

std::unique_ptr<StagedArchive> ArchivePreparation::Take(const std::stop_token& stop) {
  {
    const std::stop_callback onStop(stop, [this] { thread_.request_stop(); });
    thread_.join();
  }
  if (damage_) std::rethrow_exception(damage_);
  return staged_ && staged_->Whole() ? std::move(staged_) : nullptr;
}

}  // namespace update
