#include "OvMemCppBinding/util/RestrictedFiles.h"

#include <algorithm>
#include <system_error>

#include "OvMemCppBinding/util/SAXToNodeParser.h"

namespace Orvane::Net::OvModelEventManager::Util {

namespace fs = std::filesystem;

RestrictedFiles::RestrictedFiles(std::unique_ptr<xercesc::XMLFileMgr> wrapped,
                                 const std::string& allowedFolder)
    : files(std::move(wrapped)), folder(allowedFolder) {}

RestrictedFiles::~RestrictedFiles() = default;

void RestrictedFiles::wrap(
    std::unique_ptr<xercesc::XMLFileMgr> other) noexcept {
    files = std::move(other);
}

auto RestrictedFiles::fileOpen(const XMLCh* path, bool toWrite, Memory* memory)
    -> Handle {
    return open(transcodeToString(path, false), toWrite, memory);
}

auto RestrictedFiles::fileOpen(const char* path, bool toWrite, Memory* memory)
    -> Handle {
    return open(path, toWrite, memory);
}

// A FIFO or a device could keep the parser waiting for ever. The path that is
// opened is the one that was looked at, without links; but whoever may rename
// things on it can put a link or a FIFO there between the look and the opening.
auto RestrictedFiles::open(const std::string& path, bool toWrite,
                           Memory* memory) -> Handle {
    std::error_code failed;
    if (folder.empty() || toWrite)
        return XERCES_Invalid_File_Handle;
    const fs::path real = fs::canonical(path, failed);
    if (failed || !fs::is_regular_file(real, failed) || !isBelowFolder(real))
        return XERCES_Invalid_File_Handle;
    return files->fileOpen(real.c_str(), false, memory);
}

bool RestrictedFiles::isBelowFolder(const fs::path& path) const {
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end())
               .first == folder.end();
}

auto RestrictedFiles::openStdIn(Memory*) -> Handle {
    return XERCES_Invalid_File_Handle;
}

void RestrictedFiles::fileClose(Handle file, Memory* memory) {
    files->fileClose(file, memory);
}

void RestrictedFiles::fileReset(Handle file, Memory* memory) {
    files->fileReset(file, memory);
}

XMLFilePos RestrictedFiles::curPos(Handle file, Memory* memory) {
    return files->curPos(file, memory);
}

XMLFilePos RestrictedFiles::fileSize(Handle file, Memory* memory) {
    return files->fileSize(file, memory);
}

XMLSize_t RestrictedFiles::fileRead(Handle file, XMLSize_t byteCount,
                                    XMLByte* buffer, Memory* memory) {
    return files->fileRead(file, byteCount, buffer, memory);
}

void RestrictedFiles::fileWrite(Handle file, XMLSize_t byteCount,
                                const XMLByte* buffer, Memory* memory) {
    files->fileWrite(file, byteCount, buffer, memory);
}

XMLCh* RestrictedFiles::getFullPath(const XMLCh* path, Memory* memory) {
    return files->getFullPath(path, memory);
}

XMLCh* RestrictedFiles::getCurrentDirectory(Memory* memory) {
    return files->getCurrentDirectory(memory);
}

bool RestrictedFiles::isRelative(const XMLCh* path, Memory* memory) {
    return files->isRelative(path, memory);
}

}  // namespace Orvane::Net::OvModelEventManager::Util
