// Every test process runs with HOME and XDG_DATA_HOME in a temporary folder of its own, made before any
// test starts, so no test ever reads or writes the real user's save file. Its sound goes to OpenAL's null
// output unless the caller chose another, so no test or benchmark makes a noise or needs a sound card.

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace
{

class IsolatedUserFolders
{
public:
    IsolatedUserFolders()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "quellmar-user-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
        {
            throw std::runtime_error("cannot make a temporary user folder");
        }
        folder = pattern;
        setenv("HOME", folder.c_str(), 1);
        setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
        setenv("ALSOFT_DRIVERS", "null", 0);
    }
    ~IsolatedUserFolders()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

private:
    std::filesystem::path folder;
};

const IsolatedUserFolders isolated;

} // namespace
