#ifndef OVMEMCPPBINDING_UTIL_RESTRICTEDFILES_H
#define OVMEMCPPBINDING_UTIL_RESTRICTEDFILES_H

#include <filesystem>
#include <memory>
#include <string>

#include <xercesc/util/XMLFileMgr.hpp>

namespace Orvane::Net::OvModelEventManager::Util {

// The XML library's access to files, narrowed to the regular files below one
// folder, for reading. An open that is refused looks like a missing file.
//
// Threads: as the file access it wraps.
class RestrictedFiles : public xercesc::XMLFileMgr {
public:
    // Takes over `files`; without them it is not to be used before `wrap`. With
    // an empty `folder` nothing may be opened; else it is an absolute path
    // without links.
    RestrictedFiles(std::unique_ptr<xercesc::XMLFileMgr> files,
                    const std::string& folder);
    ~RestrictedFiles() override;

    // Takes over other files.
    void wrap(std::unique_ptr<xercesc::XMLFileMgr> other) noexcept;

    using Handle = xercesc::FileHandle;
    using Memory = xercesc::MemoryManager;

    Handle fileOpen(const XMLCh* path, bool toWrite, Memory* memory) override;
    Handle fileOpen(const char* path, bool toWrite, Memory* memory) override;
    Handle openStdIn(Memory* memory) override;

    void fileClose(Handle file, Memory* memory) override;
    void fileReset(Handle file, Memory* memory) override;
    XMLFilePos curPos(Handle file, Memory* memory) override;
    XMLFilePos fileSize(Handle file, Memory* memory) override;
    XMLSize_t fileRead(Handle file, XMLSize_t byteCount, XMLByte* buffer,
                       Memory* memory) override;
    void fileWrite(Handle file, XMLSize_t byteCount, const XMLByte* buffer,
                   Memory* memory) override;

    XMLCh* getFullPath(const XMLCh* path, Memory* memory) override;
    XMLCh* getCurrentDirectory(Memory* memory) override;
    bool isRelative(const XMLCh* path, Memory* memory) override;

private:
    Handle open(const std::string& path, bool toWrite, Memory* memory);
    bool isBelowFolder(const std::filesystem::path& path) const;

    std::unique_ptr<xercesc::XMLFileMgr> files;
    std::filesystem::path folder;
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
