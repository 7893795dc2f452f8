#include "publisher/published_index.hpp"

#include "platform/files.hpp"
#include "publisher/failure.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/scratch_folder.hpp"
#include "update/packed_file.hpp"

namespace publisher {

update::IndexFile ReadIndex(const std::string& packed) {
  ContentOfPacked(packed);
  const ScratchFolder scratch;
  const std::string unpacked = scratch / "index";
  update::IndexFile index;
  Naming(packed, [&] {
    update::ExpandPackedFile(packed, unpacked, {});
    index.Read(unpacked);
  });
  return index;
}

std::map<std::string, std::string> PublishedDigests(const Layout& layout) {
  std::map<std::string, std::string> digests;
  if (!platform::IsFile(layout.Index())) return digests;
  const update::IndexFile index = ReadIndex(layout.Index());
  for (std::size_t i = 0; i < index.Count(); ++i) {
    const update::IndexRecord record = index[i];
    if (!record.inBin.empty())
      digests[std::string(record.inBin)] = record.hasDigest ? record.digest.Hex() : "";
  }
  return digests;
}

}  // namespace publisher
