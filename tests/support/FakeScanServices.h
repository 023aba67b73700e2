#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "monitor/FolderScan.h"

namespace quillmere::testing {

/// Services of the folder scan that answer what the test says, by the file's name, and count what they were asked.
class FakeScanServices {
 public:
  struct File {
    bool isTagged = true;
    bool decodes = true;
    bool isDataless = false;
    FileDates dates;
  };
  struct State {
    File anyFile;  ///< of names that are not in `files`
    std::map<std::string, File> files;
    bool isSynced = false;
    bool isMounted = true;
    std::map<std::string, int> decodeCalls;
    std::map<std::string, int> tagCalls;
    std::map<std::string, int> datalessCalls;
    int syncedCalls = 0;

    const File& of(const FileURL& url) const {
      const auto found = files.find(url.lastPathComponent());
      return found == files.end() ? anyFile : found->second;
    }
    /// The named file's answers, to be changed.
    File& file(const std::string& name) { return files.try_emplace(name, anyFile).first->second; }
    int examinations() const {
      int sum = 0;
      for (const auto& calls : {decodeCalls, tagCalls, datalessCalls}) {
        for (const auto& [name, count] : calls) sum += count;
      }
      return sum;
    }
  };

  State* operator->() const { return state_.get(); }

  ScanServices services() const {
    ScanServices services;
    services.isDataless = [state = state_](const FileURL& url) {
      ++state->datalessCalls[url.lastPathComponent()];
      return state->of(url).isDataless;
    };
    services.isSynced = [state = state_](const FileURL&) {
      ++state->syncedCalls;
      return state->isSynced;
    };
    services.isVolumeMounted = [state = state_](const FileURL&) { return state->isMounted; };
    services.hasScreenCaptureTag = [state = state_](const FileURL& url) {
      ++state->tagCalls[url.lastPathComponent()];
      return state->of(url).isTagged;
    };
    services.decodeCompletely = [state = state_](const std::vector<FileURL>& urls) {
      std::vector<bool> answers;
      for (const FileURL& url : urls) {
        ++state->decodeCalls[url.lastPathComponent()];
        answers.push_back(state->of(url).decodes);
      }
      return answers;
    };
    services.fileDates = [state = state_](const FileURL& url) { return state->of(url).dates; };
    return services;
  }

 private:
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace quillmere::testing
