// Replays every file of a fuzz corpus folder through a fuzz target, so that inputs that once crashed it
// stay as regression tests in every build, with or without libFuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  int replayed = 0;
  for (int i = 1; i < argc; ++i) {
    std::vector<fs::path> files;
    if (fs::is_directory(argv[i])) {
      for (const auto& e : fs::recursive_directory_iterator(argv[i]))
        if (e.is_regular_file()) files.push_back(e.path());
    } else if (fs::exists(argv[i])) {
      files.emplace_back(argv[i]);
    }
    for (const auto& f : files) {
      std::ifstream in(f, std::ios::binary);
      std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  std::printf("replayed %d inputs\n", replayed);
  return 0;
}
