// Which file is loaded, how often, and what happens when it or an entry is missing.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "frame/messages.hpp"
#include "frame/siblings.hpp"
#include "frame/tools_bridge.hpp"
#include "loader_spy.hpp"

namespace {

using namespace kestrune::frame;
namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class Siblings : public testing::Test {
 protected:
  void SetUp() override {
    fresh_start();
    char name[] = "/tmp/kestrune-siblings-XXXXXX";
    folder = mkdtemp(name);
  }
  void TearDown() override {
    reset_state();
    fs::remove_all(folder);
  }
  void use_folder(const std::string& text) { ASSERT_TRUE(SetLibraryFolder(text.data(), text.size())); }

  std::string folder;
  const std::string tools = kestrune::platform::kToolsLibrary;
};

TEST_F(Siblings, OverrideThenOwnFolderThenSystemSearch) {
  const std::string beside = program_folder() + tools;
  void* module = LoadSiblingLibrary(tools.c_str());
  EXPECT_EQ(loader_spy().opened, Texts{beside});
  kestrune::platform::free_library(module);

  // A host may go to another folder.
  const fs::path here = fs::current_path();
  fs::current_path(folder);
  module = LoadSiblingLibrary(tools.c_str());
  EXPECT_EQ(loader_spy().opened.back(), beside);
  kestrune::platform::free_library(module);
  fs::current_path(here);

  // The folder is searched first, but only where it holds the file. Trailing blanks do not count.
  use_folder(folder + "   ");
  module = LoadSiblingLibrary(tools.c_str());
  EXPECT_EQ(loader_spy().opened.back(), beside);
  kestrune::platform::free_library(module);
  fs::copy_file(beside, folder + "/" + tools);
  module = LoadSiblingLibrary(tools.c_str());
  EXPECT_NE(module, nullptr);
  EXPECT_EQ(loader_spy().opened.back(), folder + "/" + tools);
  kestrune::platform::free_library(module);

  // A name that stands in neither folder goes to the loader as it is.
  module = LoadSiblingLibrary("libm.so.6");
  EXPECT_NE(module, nullptr);
  EXPECT_EQ(loader_spy().opened.back(), "libm.so.6");
  kestrune::platform::free_library(module);
  EXPECT_EQ(loader_spy().opened.size(), 5u);
}

TEST_F(Siblings, FileThatIsThereButUnusableIsNotReplaced) {
  use_folder(folder);
  std::ofstream(folder + "/" + tools) << "not a library";
  EXPECT_EQ(LoadSiblingLibrary(tools.c_str()), nullptr);
  EXPECT_EQ(loader_spy().opened.size(), 1u);
  // A folder of that name is no file.
  fs::remove(folder + "/" + tools);
  fs::create_directory(folder + "/" + tools);
  void* module = LoadSiblingLibrary(tools.c_str());
  EXPECT_EQ(loader_spy().opened.back(), program_folder() + tools);
  kestrune::platform::free_library(module);
}

TEST_F(Siblings, FolderThatDoesNotFitChangesNothing) {
  use_folder(folder);
  const std::string before = state().folder_override;
  EXPECT_EQ(before, folder + "/");
  const std::string longest(1022, 'a');
  EXPECT_FALSE(SetLibraryFolder((longest + "a").c_str(), 1023));
  EXPECT_EQ(state().folder_override, before);
  EXPECT_TRUE(SetLibraryFolder((longest + "    ").c_str(), 1026));
  EXPECT_EQ(state().folder_override, longest + "/");
}

TEST_F(Siblings, EntryIsLookedUpOnceAndAgainAfterRelease) {
  EXPECT_TRUE(loader_spy().opened.empty());
  const double c = 0.0, settings[8] = {};
  const int32_t phase = 1;
  double Z = 0.0;
  int32_t status = -1;
  for (int i = 0; i < 3; ++i)
    tools::entry<decltype(&::BRACUB)>(ToolsEntry::BRACUB)(&c, &c, &c, &c, &Z, &status, &phase, &c, &c, &c, &c,
                                                          settings);
  EXPECT_EQ(Z, 0.5);
  EXPECT_EQ(loader_spy().opened.size(), 1u);
  EXPECT_EQ(loader_spy().looked_up, Texts{"BRACUB"});
  const auto address = tools::bind(ToolsEntry::BRACUB);
  EXPECT_EQ(loader_spy().looked_up.size(), 1u);

  ReleaseProviders();
  EXPECT_EQ(loader_spy().references, 0);
  EXPECT_EQ(state().tools_library.load(), nullptr);
  for (const ProviderEntry& slot : state().tools_entries) EXPECT_EQ(slot.load(), nullptr);
  ReleaseProviders();  // nothing is loaded: nothing to free
  EXPECT_EQ(loader_spy().references, 0);

  EXPECT_NE(tools::bind(ToolsEntry::BRACUB), nullptr);
  EXPECT_NE(address, nullptr);
  EXPECT_EQ(loader_spy().opened.size(), 2u);
  EXPECT_EQ(loader_spy().looked_up, (Texts{"BRACUB", "BRACUB"}));
}

TEST_F(Siblings, CallsThatBindAtTheSameTimeShareOneHandle) {
  for (int round = 0; round < 20; ++round) {
    fresh_start();
    void* found[8] = {};
    std::vector<std::thread> threads;
    for (void*& address : found)
      threads.emplace_back([&address] { address = tools::bind(ToolsEntry::BRACUB); });
    for (std::thread& thread : threads) thread.join();
    for (void* address : found) EXPECT_EQ(address, state().tools_entries[0].load());
    EXPECT_EQ(loader_spy().references, 1);
  }
  // One call overtakes another between its look at the empty cell and its load.
  fresh_start();
  void* inner = nullptr;
  loader_spy().before_open = [&inner] { inner = tools::bind(ToolsEntry::BRACUB); };
  EXPECT_EQ(tools::bind(ToolsEntry::BRACUB), inner);
  EXPECT_EQ(loader_spy().opened.size(), 2u);
  EXPECT_EQ(loader_spy().references, 1);
}

using SiblingsDeathTest = Siblings;

TEST_F(SiblingsDeathTest, MissingLibraryOrEntryIsShownAndEndsTheProgram) {
  LibraryCell library{nullptr};
  ProviderEntry slot{nullptr};
  EXPECT_DEATH(BindProviderEntry("libNotThere.so", "BRACUB", library, slot),
               "Error: libNotThere\\.so: .*cannot open shared object file");
  EXPECT_DEATH(BindProviderEntry(tools.c_str(), "NoSuchEntry", library, slot),
               "Error: NoSuchEntry: .*undefined symbol");
  // The whole way from a forwarding routine: the stand-in has no REGLIN.
  EXPECT_DEATH(tools::bind(ToolsEntry::REGLIN), "Error: REGLIN: ");
}

struct Box {
  int calls = 0;
  void* owner = nullptr;
  std::string text, caption;
  int32_t style = 0, further = 0;
} box;

int32_t KV_CALL host_box(void* owner, const char* text, const char* caption, int32_t style, int32_t further) {
  box = {box.calls + 1, owner, text, caption, style, further};
  EXPECT_NE(state().host_module, nullptr);
  return 42;
}

TEST_F(Siblings, MessageGoesToTheHostsBoxAndLeavesNothingLoaded) {
  loader_spy().host_box = reinterpret_cast<void*>(&host_box);
  int window = 0;
  void* const owner = &window;
  const std::string long_text(5000, 'x');
  for (int i = 1; i <= 2; ++i) {
    EXPECT_EQ(ShowLibraryMessage(owner, "text of it|rest", 10, "Error|rest", 5, 16, 7), 42);
    EXPECT_EQ(box.calls, i);
    EXPECT_EQ(box.owner, owner);
    EXPECT_EQ(box.text, "text of it");
    EXPECT_EQ(box.caption, "Error");
    EXPECT_EQ(box.style, 16);
    EXPECT_EQ(box.further, 7);
    EXPECT_EQ(loader_spy().references, 0);
    EXPECT_EQ(state().host_module, nullptr);
    EXPECT_EQ(state().host_message_box, nullptr);
    EXPECT_EQ(loader_spy().opened.size(), static_cast<std::size_t>(i));
  }
  ShowLibraryMessage(owner, long_text.data(), long_text.size(), long_text.data(), 0, 16, 1);
  EXPECT_EQ(box.text.size(), 4095u);
  EXPECT_EQ(box.caption, "");

  loader_spy().host_box = nullptr;
  testing::internal::CaptureStderr();
  EXPECT_EQ(ShowLibraryMessage(owner, "text", 4, "Caption", 7, 16, 1), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Caption: text\n");
  EXPECT_EQ(box.calls, 3);
  EXPECT_EQ(loader_spy().references, 0);
}

}  // namespace
