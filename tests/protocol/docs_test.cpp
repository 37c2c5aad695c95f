// The tables of the guides against the program's own, in both directions.

#include <set>

#include "eval/parameters.h"
#include "harness/process.h"

namespace quon::test {
namespace {

using Rows = std::vector<Lines>;
using Names = std::set<std::string>;

Lines guide_lines(const std::string& guide) {
    return split(read_file(std::string(QUON_SOURCE_DIR) + "/" + guide), '\n');
}

// The rows of a guide's tables whose first column has this title; cells without blanks around them.
Rows table(const std::string& guide, const std::string& title) {
    Rows rows;
    bool inside = false;
    for (const std::string& line : guide_lines(guide)) {
        if (line.starts_with("| " + title + " |")) {
            inside = true;
        } else if (!line.starts_with("|")) {
            inside = false;
        } else if (inside && !line.starts_with("| -")) {
            Lines cells = split(line, '|');
            for (std::string& cell : cells) {
                cell = cell.size() < 2 ? "" : cell.substr(1, cell.size() - 2);
            }
            rows.emplace_back(cells.begin() + 1, cells.end());
        }
    }
    EXPECT_FALSE(rows.empty()) << guide << " " << title;
    return rows;
}

// What stands between backticks.
Lines spans(const std::string& cell) {
    const Lines parts = split(cell, '`');
    Lines found;
    for (std::size_t i = 1; i < parts.size(); i += 2) found.push_back(parts[i]);
    return found;
}

Names names(const Rows& rows) {
    Names found;
    for (const Lines& row : rows) {
        for (const std::string& span : spans(row[0])) found.insert(span);
    }
    return found;
}

TEST(Docs, Switches) {
    Names known;
    for (const std::string& line : run_to_end({"--help"}, "").lines) {
        if (!line.starts_with("  ")) continue;
        const std::string text = line.substr(2, 18);
        known.insert(text.substr(0, text.find_last_not_of(' ') + 1));
    }
    EXPECT_EQ(names(table("docs/command-line.md", "switch")), known);
    for (const std::string& name : names(table("README.md", "switch"))) {
        EXPECT_TRUE(known.contains(name)) << name;
    }
}

TEST(Docs, Options) {
    Session session(Lines{});
    Rows known;
    for (const std::string& line : lines_with(session.answers({"uci"}), "option name ")) {
        const std::size_t type = line.find(" type "), value = line.find(" default ");
        const Lines words = split(line.substr(type + 6), ' ');
        const std::string name = line.substr(12, type - 12);
        std::string range = words[0] == "check" ? "true, false" : "(button)";
        std::string standard = words[0] == "button" ? "button" : words[2];
        if (words[0] == "spin") range = words[4] + " to " + words[6];
        if (name == "UCI_Elo") range = "from " + words[4];
        if (value == std::string::npos || standard.empty()) standard = "*";
        known.push_back({name, standard, range});
    }
    const Rows readme = table("README.md", "option"), guide = table("docs/uci.md", "option");
    ASSERT_EQ(readme.size(), known.size());
    ASSERT_EQ(guide.size(), known.size());
    for (std::size_t i = 0; i < known.size(); ++i) {
        const std::string& name = known[i][0];
        EXPECT_EQ(spans(readme[i][0]), Lines{name});
        EXPECT_EQ(spans(guide[i][0]), Lines{name});
        if (name == "SyzygyPath") continue;  // a text
        EXPECT_EQ(guide[i][1], known[i][2]) << name;
        if (known[i][2].find_first_of("0123456789") != std::string::npos) {
            EXPECT_EQ(readme[i][2], known[i][2]) << name;
        }
        if (name != "UCI_Elo" && known[i][1] != "*") {
            EXPECT_EQ(readme[i][1], known[i][1]) << name;
        }
    }
}

TEST(Docs, ConsoleCommands) {
    std::string guides;
    for (const char* name : {"console", "book", "tools"}) {
        guides += read_file(std::string(QUON_SOURCE_DIR) + "/docs/" + name + ".md");
    }
    Names known;
    const Ending ending = run_to_end({"-c", "-nolog"}, "help\n");
    for (auto line = std::find(ending.lines.begin(), ending.lines.end(), "white") + 2;
         line < ending.lines.end() && !line->empty(); ++line) {
        const std::string word = split(*line, ' ')[0];
        known.insert(word);
        EXPECT_TRUE(guides.find("`" + word + "`") != std::string::npos ||
                    guides.find("`" + word + " ") != std::string::npos)
            << word;
    }
    EXPECT_GT(known.size(), 30U);
    for (const std::string& span : names(table("docs/console.md", "command"))) {
        const std::string word = split(span, ' ')[0];
        EXPECT_TRUE(word == "MOVE" || known.contains(word)) << word;
    }
}

TEST(Docs, ParameterKeys) {
    Names told, known = {"QuonBook",   "BookDepth",         "BookVariety",
                         "SyzygyPath", "SyzygyProbeDepth5", "SyzygyProbeDepth6"};
    for (const std::string& line : guide_lines("docs/quon-rc.md")) {
        if (line.starts_with("| `")) told.insert(line.substr(3, line.find('`', 3) - 3));
    }
    for (const Parameter& parameter : parameters()) known.insert(parameter.key);
    EXPECT_EQ(told, known);
}

}  // namespace
}  // namespace quon::test
