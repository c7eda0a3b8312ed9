// SPDX-License-Identifier: MIT
#include "FileQuestions.h"

#include <Foundation/NSFileManager.h>

#include <unistd.h>

namespace zr {

namespace {
bool isAccessible(const std::string& path, int mode) {
    if (path.find('\0') != std::string::npos) return false;
    return FileQuestions::shared().ask<bool>(path, [path, mode] { return access(path.c_str(), mode) == 0; }) ==
           true;
}
} // namespace

ZR_CLASS_TABLE(NSFileManager)

NSFileManager& NSFileManager::defaultManager() {
    static auto* const manager = new std::shared_ptr<NSFileManager>(make<NSFileManager>());
    return **manager;
}

bool NSFileManager::fileExistsAtPath(const std::string& path) const { return isAccessible(path, F_OK); }

bool NSFileManager::isWritableFileAtPath(const std::string& path) const { return isAccessible(path, W_OK); }

} // namespace zr
