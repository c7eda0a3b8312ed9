#include <Foundation/NSFileManager.h>

#include <unistd.h>

namespace zr {

namespace {
bool isPath(const std::string& path) { return path.find('\0') == std::string::npos; }
} // namespace

ZR_CLASS_TABLE(NSFileManager)

NSFileManager& NSFileManager::defaultManager() {
    static auto* const manager = new std::shared_ptr<NSFileManager>(make<NSFileManager>());
    return **manager;
}

bool NSFileManager::fileExistsAtPath(const std::string& path) const {
    return isPath(path) && access(path.c_str(), F_OK) == 0;
}

bool NSFileManager::isWritableFileAtPath(const std::string& path) const {
    return isPath(path) && access(path.c_str(), W_OK) == 0;
}

} // namespace zr
