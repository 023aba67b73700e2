// What nobody can do without who takes a folder's pictures into the list: the header of each is read, and the list as
// it has grown is saved once a second and at the end. `burst_floor FOLDER LIST` prints the seconds that takes.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "formats/ImageFile.h"
#include "foundation/FileStatus.h"
#include "records/ScreenshotListWriter.h"

using namespace quillmere;

namespace {

double moment() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

ScreenshotItem recordOf(const FileURL& url) {
  ScreenshotItem item;
  item.id = UUID::createUuid();
  item.url = url;
  if (const auto status = fileStatus(url)) {
    item.createdAt = status->modified;
    item.fileIdentity = FileIdentity{std::string("254:0"), status->inode, status->created, status->size};
  }
  item.fileBookmark = QByteArray(200, 'b');  // as long as one is
  return item;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const FileURL folder = FileURL::fromPath(std::string_view(argv[1]));
  const FileURL file = FileURL::fromPath(std::string_view(argv[2]));
  std::vector<FileURL> urls;
  listDirectory(folder, [&](int, const char* name, EntryKind) { urls.push_back(folder.appending(name)); });
  std::sort(urls.begin(), urls.end());

  ScreenshotList list;
  ScreenshotListWriter writer;
  const double begin = moment();
  double saved = begin;
  for (const FileURL& url : urls) {
    if (!ImageFile::pixelSize(url)) return 1;
    list.insertNewest(recordOf(url));
    if (moment() - saved < 1) continue;
    if (!writer.save(list, file)) return 1;
    saved = moment();
  }
  if (!writer.save(list, file)) return 1;
  std::printf("%.3f\n", moment() - begin);
  return 0;
}
