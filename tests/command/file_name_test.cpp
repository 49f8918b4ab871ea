// The names of files: two names of one file, endings, the longest name, what is no definition.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "run_command.h"

namespace qarv::test {
namespace {

namespace fs = std::filesystem;

const std::string kSine = R"({"Fsamp": 1000, "UnitAmpl": "g", "TolUpperRat": 0.1,
    "TolLowerRat": -0.1, "Single": {"Period": 0.02, "PeakLevel": 5, "Nsamp": 500}})";

class FileNames : public ::testing::Test {
 protected:
  FileNames() {
    WriteText(folder / "def.json", kSine);
    fs::create_directory(folder / "sub");
  }
  CommandResult Generate(std::vector<std::string> options) const {
    options.insert(options.begin(), {"generate", folder / "def.json"});
    return RunCommand(options);
  }
  TempFolder folder;
};

// ---- Two names of one file ---------------------------------------------------------------------

TEST_F(FileNames, TwoOutputsForOneFileAreRefusedHoweverTheyAreSpelt) {
  fs::create_symlink("new.csv", folder / "dangling");
  fs::create_symlink("dangling", folder / "sub/../chain");
  fs::create_symlink(".", folder / "here");
  WriteText(folder / "old.csv", "old");
  fs::create_hard_link(folder / "old.csv", folder / "hard.csv");
  const std::vector<std::pair<std::string, std::string>> pairs{
      {"new.csv", "./new.csv"}, {"new.csv", "sub/../new.csv"}, {"new.csv", "here/new.csv"},
      {"new.csv", "dangling"},  {"chain", "new.csv"},          {"old.csv", "here/old.csv"},
      {"old.csv", "hard.csv"},  {"sub//x", "sub/./x"}};
  const auto before = folder.List();
  const std::string line = "cd " + ShellQuoted(folder.GetPath().string()) + " && " +
                           ShellQuoted(QARV_WAVE_COMMAND) + " generate def.json";
  for (const auto& [one, other] : pairs) {
    const int status =
        std::system((line + " --csv " + one + " --record " + other + " >out 2>err").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2) << one << " " << other;
    EXPECT_EQ(ReadText(folder / "err"), "qarv-wave: " + other + ": is written twice\n");
    fs::remove(folder / "out");
    fs::remove(folder / "err");
    EXPECT_EQ(folder.List(), before) << one << " " << other;
    EXPECT_EQ(ReadText(folder / "old.csv"), "old");
  }
  // And two files are two.
  EXPECT_EQ(Generate({"--csv", folder / "x.csv", "--record", folder / "sub/x.csv"}).code, 0);
}

TEST_F(FileNames, ALinkToNothingYetIsFollowed) {
  fs::create_symlink("sub/new.csv", folder / "link.csv");
  ASSERT_EQ(Generate({"--csv", folder / "link.csv"}).code, 0);
  EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
  EXPECT_TRUE(fs::is_regular_file(folder / "sub/new.csv"));
}

TEST_F(FileNames, AnEmptyNameIsAnError) {
  for (const char* const option : {"--csv", "--npy", "--wav", "--uff", "--plot", "--record"}) {
    const auto result = Generate({option, ""});
    EXPECT_EQ(result.code, 2) << option;
    EXPECT_NE(result.err.find(option), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("an empty name"), std::string::npos) << result.err;
  }
  EXPECT_EQ(RunCommand({"check", ""}).code, 2);
  EXPECT_EQ(RunCommand({"batch", folder / "sub", "--output", ""}).code, 2);
}

// ---- Endings, modes, lengths -------------------------------------------------------------------

TEST_F(FileNames, EndingsMayBeInAnyCase) {
  const auto at = [&](const char* name) { return folder / name; };
  fs::rename(at("def.json"), at("Def.JSON"));
  ASSERT_EQ(RunCommand({"generate", at("Def.JSON"), "--plot", at("a.PNG"), "--csv", at("a.CSV"),
                        "--uff", at("a.Uff"), "--record", at("a.REC")})
                .code,
            0);
  EXPECT_TRUE(ReadText(at("a.PNG")).starts_with("\x89PNG"));
  EXPECT_EQ(RunCommand({"report", at("Def.JSON"), "--html", at("a.HTML")}).code, 0);
  ASSERT_EQ(RunCommand({"srs", at("Def.JSON"), "--plot", at("a.Svg")}).code, 0);
  EXPECT_NE(ReadText(at("a.Svg")).find("<svg"), std::string::npos);
  EXPECT_EQ(RunCommand({"srs", at("a.REC")}).out, RunCommand({"srs", at("Def.JSON")}).out);
  EXPECT_EQ(RunCommand({"srs", at("a.CSV")}).code, 0);
  EXPECT_EQ(RunCommand({"judge", at("Def.JSON"), at("a.Uff")}).code, 0);
  const auto result = RunCommand({"batch", folder.GetPath().string()});
  EXPECT_NE(result.out.find("Def "), std::string::npos) << result.out << result.err;
}

TEST_F(FileNames, AFileThatIsOverwrittenKeepsItsMode) {
  for (const mode_t mode : {0600U, 0664U, 0755U}) {
    WriteText(folder / "w.csv", "old");
    ASSERT_EQ(chmod((folder / "w.csv").c_str(), mode), 0);
    ASSERT_EQ(Generate({"--csv", folder / "w.csv"}).code, 0);
    struct stat status {};
    ASSERT_EQ(stat((folder / "w.csv").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, mode);
    EXPECT_NE(ReadText(folder / "w.csv"), "old");
  }
}

TEST_F(FileNames, ANameMayBeAsLongAsTheSystemHasIt) {
  const std::string name = std::string(251, 'n') + ".csv";
  EXPECT_EQ(Generate({"--csv", folder / name}).code, 0);
  EXPECT_TRUE(fs::exists(folder / name));
  const auto result = Generate({"--record", folder / "w.rec", "--csv", folder / ("n" + name)});
  EXPECT_EQ(result.code, 2);
  EXPECT_NE(result.err.find("File name too long"), std::string::npos) << result.err;
  EXPECT_FALSE(fs::exists(folder / "w.rec"));
}

// ---- A folder of definitions -------------------------------------------------------------------

TEST_F(FileNames, DefinitionsThatWouldShareAFileAreARowEach) {
  const std::string longest(250, 'n');
  for (const std::string& name : {std::string("a"), std::string("a.srs"), std::string("index"),
                                  std::string("summary"), longest}) {
    WriteText(folder / "sub/" + name + ".json", kSine);
  }
  WriteText(folder / "sub/a.JSON", kSine);
  const auto result = RunCommand({"batch", folder / "sub", "--output", folder / "out"});
  EXPECT_EQ(result.code, 1) << result.err;
  for (const char* const row :
       {"fails: a.csv: is written twice\n", "fails: a.srs.png: is written twice\n",
        "fails: index.html: is written twice\n", "fails: summary.csv: is written twice\n",
        "srs.png: File name too long\n"}) {
    EXPECT_NE(result.out.find(row), std::string::npos) << row << result.out;
  }
  EXPECT_TRUE(fs::exists(folder / "out/a.srs.png"));
  EXPECT_TRUE(ReadText(folder / "out/summary.csv").starts_with("definition,family,"));
  EXPECT_NE(ReadText(folder / "out/index.html").find("is written twice"), std::string::npos);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder / "out"), fs::directory_iterator()), 8);
  // Without outputs nothing is shared.
  EXPECT_EQ(RunCommand({"batch", folder / "sub"}).code, 0);
}

TEST_F(FileNames, WhatIsNoFileInAFolderOfDefinitionsIsAFailedRow) {
  WriteText(folder / "sub/good.json", kSine);
  ASSERT_EQ(mkfifo((folder / "sub/fifo.json").c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", folder / "sub/zero.json");
  fs::create_directory(folder / "sub/folder.json");
  fs::create_symlink("nowhere", folder / "sub/gone.json");
  const auto result = RunCommand({"batch", folder / "sub"});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.out.find("good        single sine wave"), std::string::npos) << result.out;
  for (const char* const row :
       {"fifo.json: is not a regular file\n", "gone.json: does not exist\n",
        "zero.json: is not a regular file\n", "folder.json: is not a regular file\n"}) {
    EXPECT_NE(result.out.find(row), std::string::npos) << row << result.out;
  }
}

}  // namespace
}  // namespace qarv::test
