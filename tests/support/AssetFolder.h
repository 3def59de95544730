// Copies of the generated assets folder for whole-program runs: every file
// linked, some left out or replaced. Header-only; the folder is removed when
// the object goes.
#pragma once

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace test_support {

// The three folders of assets, relative to the assets root.
inline const char* const kAssetFolders[] = {"Data", "music", "speech/mp3"};

// Every asset file under `root`, as "Data/rain.png" etc., sorted.
inline std::vector<std::string> ListAssets(const std::filesystem::path& root) {
  std::vector<std::string> files;
  for (const char* folder : kAssetFolders)
    for (const auto& entry : std::filesystem::directory_iterator(root / folder))
      files.push_back((std::filesystem::path(folder) / entry.path().filename()).generic_string());
  std::sort(files.begin(), files.end());
  return files;
}

class AssetFolder {
 public:
  // A new folder in the temp directory with links to every asset of `from`.
  explicit AssetFolder(const std::filesystem::path& from) {
    std::string pattern = (std::filesystem::temp_directory_path() / "karvo_assets_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return;
    m_root = pattern;
    for (const char* folder : kAssetFolders) std::filesystem::create_directories(m_root / folder);
    for (const std::string& file : ListAssets(from)) std::filesystem::create_symlink(from / file, m_root / file);
  }
  ~AssetFolder() {
    std::error_code ignored;
    if (!m_root.empty()) std::filesystem::remove_all(m_root, ignored);
  }
  AssetFolder(const AssetFolder&) = delete;
  AssetFolder& operator=(const AssetFolder&) = delete;

  const std::filesystem::path& Root() const { return m_root; }
  bool Made() const { return !m_root.empty(); }

  void Remove(const std::string& file) { std::filesystem::remove(m_root / file); }
  // Puts `bytes` in place of the link.
  void Replace(const std::string& file, const std::string& bytes) {
    Remove(file);
    std::ofstream(m_root / file, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
  }

 private:
  std::filesystem::path m_root;
};

}  // namespace test_support
