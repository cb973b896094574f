// A device folder and a folder for files, for tests that run zb.
#pragma once

#include "apps/CalendarText.h"
#include "apps/ZbProgram.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace zb::test
{
class ZbTest : public ::testing::Test
{
  protected:
    std::filesystem::path device() const
    {
        return m_folder.path() / "device";
    }
    std::string file(const std::string &name, const std::string &bytes) const
    {
        return writeFile(m_folder.path() / name, bytes);
    }
    const std::filesystem::path &folder() const
    {
        return m_folder.path();
    }

    /// On this test's device.
    ProgramResult zb(const std::vector<std::string> &arguments, const ProgramOptions &options = {}) const
    {
        std::vector<std::string> words = {"--device", device().string()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return runZb(words, options);
    }
    /// The JSON that a command prints; it must end well.
    nlohmann::json json(const std::vector<std::string> &arguments, const ProgramOptions &options = {}) const
    {
        const ProgramResult result = zb(arguments, options);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return nlohmann::json::parse(result.out, nullptr, false);
    }
    /// Imports a calendar of these components.
    ProgramResult import(const std::string &components) const
    {
        return zb({"import", file("import.ics", calendarOf(components))});
    }
    int storedCount() const
    {
        const nlohmann::json info = json({"info", "--json"});
        for (const auto &database : info["databases"])
        {
            if (database["name"] == "Appointments Database")
            {
                return database["records"];
            }
        }
        return -1;
    }

  private:
    TemporaryFolder m_folder;
};
} // namespace zb::test
