// SPDX-License-Identifier: Apache-2.0
#include "process_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "parse.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const
    {
        closedir(folder);
    }
};

std::string FolderOf(pid_t process)
{
    return "/proc/" + std::to_string(process);
}

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

// A process chooses its name itself: it must not reach a terminal as more than a word.
std::string Shown(std::string name)
{
    for (char& letter : name) {
        letter = letter > ' ' && letter <= '~' ? letter : '?';
    }
    return name;
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
    const std::string nameField = "Name:\t";
    const std::string uidField = "Uid:\t";
    ProcessOwner owner;
    std::ifstream status(FolderOf(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, nameField.size(), nameField) == 0 && line.size() > nameField.size()) {
            owner.name = Shown(line.substr(nameField.size()));
        } else if (line.compare(0, uidField.size(), uidField) == 0) {
            // The real one is the first of four.
            const size_t end = line.find('\t', uidField.size());
            const auto uid = ParseNumber<uint32_t>(line.substr(uidField.size(), end - uidField.size()));
            owner.uid = static_cast<int32_t>(uid);
        }
    }
    return access(FolderOf(process).c_str(), F_OK) == 0 ? std::make_optional(owner) : std::nullopt;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
