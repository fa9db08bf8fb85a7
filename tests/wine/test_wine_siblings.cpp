// The frame inside a real 32-bit host that exports TavrinMessageBox: where the sibling libraries are found,
// what the user is told when one is missing, and that nothing stays behind.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

#include "common_files.hpp"
#include "frame/messages.hpp"
#include "frame/siblings.hpp"
#include "frame/tools_bridge.hpp"
#include "import_spy.hpp"
#include "seh.hpp"

namespace {

using namespace kestrune::frame;
namespace fs = std::filesystem;

struct HostBox {
  int calls = 0;
  void* owner = nullptr;
  std::string text, caption;
  std::int32_t style = 0, further = 0;
} host_box;

}  // namespace

extern "C" __declspec(dllexport) std::int32_t
    __stdcall TavrinMessageBox(void* owner, const char* text, const char* caption, std::int32_t style,
                               std::int32_t further) {
  host_box = {host_box.calls + 1, owner, text, caption, style, further};
  return 42;
}

namespace {

std::string system_text(DWORD code) {
  char text[512];
  return {text, FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                               text, sizeof text, nullptr)};
}

DWORD handles() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

std::string program_folder() {
  char path[1024];
  const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string text(path, length);
  return text.substr(0, text.rfind('\\') + 1);
}

class Wine : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    host_box = {};
    folder = (fs::temp_directory_path() / ("kestrune" + std::to_string(GetCurrentProcessId()))).string();
    fs::create_directories(folder);
  }
  void TearDown() override {
    reset_state();
    fs::remove_all(folder);
  }
  // Path that LoadSiblingLibrary went to for the tools library; "" when it failed.
  std::string loaded_from() {
    ImportSpy spy;
    void* module = LoadSiblingLibrary(tools.c_str());
    EXPECT_EQ(spy.keys_opened, spy.keys_closed);
    keys_opened = spy.keys_opened;
    EXPECT_EQ(spy.loaded.size(), 1u);
    kestrune::platform::free_library(module);
    return module != nullptr ? spy.loaded.back() : "";
  }
  void install(const std::string& where) {
    fs::create_directories(where);
    fs::copy_file(program_folder() + tools, where + "\\" + tools, fs::copy_options::overwrite_existing);
  }
  Caught call_mrinv() {
    return run_catching([] {
      std::int32_t n = 1, status = 0;
      double a[1] = {4.0};
      tools::entry<decltype(&::MRINV)>(ToolsEntry::MRINV)(&n, &n, a, &status);
    });
  }

  std::string folder;
  int keys_opened = 0;
  const std::string tools = kestrune::platform::kToolsLibrary;
};

TEST_F(Wine, CommonFilesFolderThenBareName) {
  CommonFiles value;
  install(folder + "\\Tavrin\\Kestrune");
  value.set(folder);
  EXPECT_EQ(loaded_from(), folder + "\\Tavrin\\Kestrune\\" + tools);
  // A value whose writer left out the terminating zero.
  value.set(folder + "|", folder.size());
  EXPECT_EQ(loaded_from(), folder + "\\Tavrin\\Kestrune\\" + tools);
  // No such file there; a value that is no text, or too long for the buffer; no value.
  value.set(folder + "\\elsewhere");
  EXPECT_EQ(loaded_from(), tools);
  value.set(folder, folder.size() + 1, REG_BINARY);
  EXPECT_EQ(loaded_from(), tools);
  for (const std::size_t length : {245u, 255u, 256u, 1000u}) {
    value.set(std::string(length, 'x'));
    EXPECT_EQ(loaded_from(), tools) << length;
  }
  value.remove();
  EXPECT_EQ(loaded_from(), tools);
  EXPECT_EQ(keys_opened, 1);
}

TEST_F(Wine, FolderOverrideComesFirstAndSparesTheRegistry) {
  CommonFiles value;
  install(folder + "\\Tavrin\\Kestrune");
  value.set(folder);
  const std::string override_folder = folder + "\\other";
  const std::string padded = override_folder + "  ";
  ASSERT_TRUE(SetLibraryFolder(padded.data(), padded.size()));
  EXPECT_EQ(loaded_from(), folder + "\\Tavrin\\Kestrune\\" + tools);
  EXPECT_EQ(keys_opened, 1);
  install(override_folder);
  EXPECT_EQ(loaded_from(), override_folder + "\\" + tools);
  EXPECT_EQ(keys_opened, 0);
}

TEST_F(Wine, MissingLibraryIsShownInTheHostsBoxAndRaisesEachTime) {
  LibraryCell library{nullptr};
  ProviderEntry slot{nullptr};
  DWORD before = 0;
  for (int i = 1; i <= 5; ++i) {
    ImportSpy spy;
    const Caught caught = run_catching([&] { BindProviderEntry("KVNotThere.dll", "BRACUB", library, slot); });
    EXPECT_TRUE(caught.any);
    EXPECT_EQ(caught.code, 0xEFFFFFFFu);
    EXPECT_TRUE(caught.flags & EXCEPTION_NONCONTINUABLE);
    EXPECT_EQ(host_box.calls, i);
    EXPECT_EQ(host_box.text, "KVNotThere.dll: " + system_text(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(host_box.caption, "Error");
    EXPECT_EQ(host_box.style, 16);
    EXPECT_EQ(host_box.further, 1);
    EXPECT_EQ(host_box.owner, GetActiveWindow());
    EXPECT_EQ(spy.boxes, 0);
    EXPECT_EQ(spy.references, 0);
    EXPECT_EQ(state().host_module, nullptr);
    EXPECT_EQ(state().host_message_box, nullptr);
    EXPECT_EQ(library.load(), nullptr);
    if (i == 2) before = handles();  // the first round opens what the system itself keeps
  }
  EXPECT_EQ(handles(), before);
}

TEST_F(Wine, MissingEntryIsShownAndTheOthersStillWork) {
  const std::string without = program_folder() + "without_mrinv";
  ASSERT_TRUE(SetLibraryFolder(without.data(), without.size()));
  ASSERT_EQ(GetModuleHandleA(tools.c_str()), nullptr);
  for (int i = 1; i <= 2; ++i) {
    const Caught caught = call_mrinv();
    EXPECT_EQ(caught.code, 0xEFFFFFFFu);
    EXPECT_EQ(host_box.calls, i);
    EXPECT_EQ(host_box.text, "MRINV: " + system_text(ERROR_PROC_NOT_FOUND));
  }
  EXPECT_FALSE(run_catching([] { tools::bind(ToolsEntry::BRACUB); }).any);
  EXPECT_EQ(host_box.calls, 2);

  // Released, and found complete at the next use.
  ReleaseProviders();
  EXPECT_EQ(GetModuleHandleA(tools.c_str()), nullptr);
  state().folder_override_set = false;
  EXPECT_FALSE(call_mrinv().any);
  EXPECT_NE(GetModuleHandleA(tools.c_str()), nullptr);
  EXPECT_EQ(host_box.calls, 2);
}

TEST_F(Wine, EntryIsLookedUpOnce) {
  ImportSpy spy;
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(call_mrinv().any);
  EXPECT_EQ(spy.loaded.size(), 1u);
  EXPECT_EQ(spy.looked_up, std::vector<std::string>{"MRINV"});
  EXPECT_EQ(spy.references, 1);
  ReleaseProviders();
  EXPECT_EQ(spy.references, 0);
}

TEST_F(Wine, HostWithoutBoxGetsTheSystemsWithItsStyle) {
  ImportSpy spy;
  const HWND owner = GetDesktopWindow();
  const auto show = [&] { return ShowLibraryMessage(owner, "a text that is cut", 6, "Caption", 7, 0x31, 9); };
  const auto expect_system_box = [&](int boxes, int loads, int frees) {
    EXPECT_EQ(spy.boxes, boxes);
    EXPECT_EQ(spy.owner, owner);
    EXPECT_EQ(spy.text, "a text");
    EXPECT_EQ(spy.caption, "Caption");
    EXPECT_EQ(spy.style, 0x31u);
    EXPECT_EQ(spy.loaded.size(), static_cast<std::size_t>(loads));
    EXPECT_EQ(spy.free_calls, frees);
    EXPECT_EQ(spy.references, 0);
  };
  spy.hidden_name = "TavrinMessageBox";
  EXPECT_EQ(show(), IDCANCEL);
  expect_system_box(1, 1, 1);
  EXPECT_EQ(show(), IDCANCEL);
  expect_system_box(2, 2, 2);
  // The host's file name cannot be had, or does not fit: its module is not loaded at all.
  spy.hidden_name.clear();
  spy.module_name = ImportSpy::fails;
  EXPECT_EQ(show(), IDCANCEL);
  expect_system_box(3, 2, 3);
  spy.module_name = ImportSpy::full;
  EXPECT_EQ(show(), IDCANCEL);
  expect_system_box(4, 2, 4);
  EXPECT_EQ(host_box.calls, 0);
  spy.module_name = ImportSpy::real;
  EXPECT_EQ(show(), 42);
  EXPECT_EQ(host_box.calls, 1);
  EXPECT_EQ(host_box.owner, owner);
  EXPECT_EQ(host_box.further, 9);
  expect_system_box(4, 3, 5);
}

void KV_CALL nothing(const std::int32_t*, const double*, double*, std::int32_t*, void*) {}

TEST_F(Wine, TraceFilesAreMadeAndDeleted) {
  ImportSpy spy;
  const std::int32_t one = 1, units[7] = {1, 2, 3, 4, 5, 6, 7};
  const double tolerance = 1e-9;
  std::int32_t iterations = 0, status = -1;
  double x[1] = {}, f[1];
  const auto call = [&] {
    tools::CNEWTON(&one, x, f, &nothing, nullptr, &tolerance, &one, units, &iterations, &status);
    EXPECT_EQ(status, 0);
  };
  call();
  ASSERT_EQ(spy.temporary_files.size(), 7u);
  const char* const prefixes[] = {"ERR", "DIA", "OUT", "FI", "JAC", "SOL", "XI"};
  for (int i = 0; i < 7; ++i) {
    const fs::path path = spy.temporary_files[static_cast<std::size_t>(i)];
    EXPECT_EQ(path.filename().string().rfind(prefixes[i], 0), 0u) << path;
    EXPECT_FALSE(fs::exists(path)) << path;
  }
  for (const auto answer : {ImportSpy::temp_fails, ImportSpy::temp_long}) {
    spy.temp = answer;
    call();
    EXPECT_EQ(spy.temporary_files.size(), 7u);
    EXPECT_EQ(std::strncmp(state().traces.names[0], "KVTools.CNEWTON.IOERR.log ", 26), 0);
    EXPECT_EQ(std::strncmp(state().traces.names[6], "KVTools.CNEWTON.IOX.log ", 24), 0);
    EXPECT_FALSE(fs::exists("KVTools.CNEWTON.IOERR.log"));
  }
}

// A host that does not catch the exception ends with its code.
TEST_F(Wine, HostThatDoesNotCatchEndsWithTheCode) {
  char path[1024];
  GetModuleFileNameA(nullptr, path, sizeof path);
  std::string command = "\"" + std::string(path) + "\" --without-library";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  ASSERT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                             &process));
  EXPECT_EQ(WaitForSingleObject(process.hProcess, 120000), WAIT_OBJECT_0);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  EXPECT_EQ(code, 0xEFFFFFFFu);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

// The system's last resort without its dialog and debugger: the process ends with the exception's code.
LONG WINAPI end_quietly(EXCEPTION_POINTERS*) {
  return EXCEPTION_EXECUTE_HANDLER;
}

int call_without_library() {
  SetUnhandledExceptionFilter(end_quietly);
  LibraryCell library{nullptr};
  ProviderEntry slot{nullptr};
  BindProviderEntry("KVNotThere.dll", "BRACUB", library, slot);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--without-library") == 0) return call_without_library();
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
