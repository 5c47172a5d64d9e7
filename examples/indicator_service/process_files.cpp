// SPDX-License-Identifier: Apache-2.0
#include "process_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>

#include "parse.h"
#include "print.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

std::string FolderOf(pid_t process) { return "/proc/" + std::to_string(process); }

// Calls `visit` with the folder's descriptor and the name of each entry that is a number.
void ForEachNumber(const std::string& path, const std::function<void(int folder, const char* name)>& visit)
{
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
    if (folder == nullptr) {
        return;
    }
    while (const dirent* const entry = readdir(folder.get())) {
        if (entry->d_name[0] >= '0' && entry->d_name[0] <= '9') {
            visit(dirfd(folder.get()), entry->d_name);
        }
    }
}

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** A field of /proc/PID/status, up to its first blank; empty if there is none. */
std::string FindField(const std::string& status, const std::string& name)
{
    const size_t field = status.find("\n" + name + ":\t");
    const size_t begin = field == std::string::npos ? status.size() : field + name.size() + 3;
    return status.substr(begin, status.find_first_of("\t\n", begin) - begin);
}

bool HasTerminal(pid_t process)
{
    // After the name, which is in brackets and may hold any byte: state, parent, group, session, terminal.
    const std::string stat = ReadFile(FolderOf(process) + "/stat");
    std::istringstream fields(stat.substr(std::min(stat.size(), stat.rfind(')') + 1)));
    std::string skipped;
    int terminal = 0;
    fields >> skipped >> skipped >> skipped >> skipped >> terminal;
    return terminal != 0;
}

std::string FindProgram(pid_t process)
{
    std::array<char, PATH_MAX> path{};
    const ssize_t size = readlink((FolderOf(process) + "/exe").c_str(), path.data(), path.size());
    std::string program(path.data(), size > 0 ? static_cast<size_t>(size) : 0);
    const std::string deleted = " (deleted)";
    if (program.size() > deleted.size() &&
        program.compare(program.size() - deleted.size(), deleted.size(), deleted) == 0) {
        program.resize(program.size() - deleted.size());
    }
    return program.substr(program.rfind('/') + 1);
}

/** With each `\xNN` replaced by its byte. */
std::string Unescape(const std::string& text)
{
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        const char* const digits = text.data() + i + 2;
        if (text.compare(i, 2, "\\x") == 0 && i + 4 <= text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            plain += static_cast<char>(byte);
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

/** The application that a control group is named after; empty if it is named otherwise. */
std::string ApplicationOfGroup(const std::string& group)
{
    const std::string prefix = "app-";
    const size_t dot = group.rfind('.');
    if (dot == std::string::npos || group.compare(0, prefix.size(), prefix) != 0) {
        return "";
    }
    const std::string kind = group.substr(dot);
    std::string name = group.substr(prefix.size(), dot - prefix.size());
    if (kind == ".scope") {
        name.resize(std::min(name.size(), name.rfind('-'))); // Before RANDOM.
    } else if (kind == ".service") {
        name.resize(std::min(name.size(), name.find('@')));
    } else {
        return "";
    }
    return Unescape(name.substr(name.rfind('-') + 1)); // After LAUNCHER.
}

} // namespace

void ForEachProcess(const std::function<void(pid_t process)>& visit)
{
    ForEachNumber("/proc", [&visit](int /* folder */, const char* name) { visit(ParseNumber<pid_t>(name)); });
}

void ForEachOpenFile(pid_t process, const std::function<void(dev_t device, ino_t inode)>& visit)
{
    ForEachNumber(FolderOf(process) + "/fd", [&visit](int folder, const char* name) {
        struct statx file {};
        // What is known without asking the file system's server, which may not answer.
        if (statx(folder, name, AT_STATX_DONT_SYNC, STATX_INO, &file) == 0) {
            visit(makedev(file.stx_dev_major, file.stx_dev_minor), file.stx_ino);
        }
    });
}

std::optional<ProcessOwner> FindOwner(pid_t process)
{
    const std::string uid = FindField(ReadFile(FolderOf(process) + "/status"), "Uid"); // The real one comes first.
    if (uid.empty()) {
        return std::nullopt;
    }
    std::string name = HasTerminal(process) ? "" : FindDesktopApplication(ReadFile(FolderOf(process) + "/cgroup"));
    name = Printable(name.empty() ? FindProgram(process) : name);
    return ProcessOwner{name.empty() ? UNKNOWN_PROCESS : name, static_cast<int32_t>(ParseNumber<uint32_t>(uid))};
}

std::string FindDesktopApplication(const std::string& cgroups)
{
    std::string application;
    size_t end = 0;
    for (size_t begin = 0; begin < cgroups.size(); begin = end + 1) {
        end = std::min(cgroups.size(), cgroups.find_first_of("/\n", begin));
        const std::string found = ApplicationOfGroup(cgroups.substr(begin, end - begin));
        application = found.empty() ? application : found; // The innermost group comes last.
    }
    return application;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
