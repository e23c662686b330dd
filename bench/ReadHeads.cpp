// The floor of `tev-agent list`: loads the same libraries and reads the heads of the same model files, in the same
// blocks and order, and writes each model's name.
//
//     tev_read_heads LIBRARY FOLDER

#include <dirent.h>
#include <dlfcn.h>
#include <expat.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t blockSize = 4096;

/// One file's head.
struct Head {
    XML_Parser parser = nullptr;
    int depth = 0;
    bool isComplete = false;
    std::string name;
    std::vector<std::string> texts;  // all other attributes, with their names
};

void XMLCALL startElement(void* userData, const XML_Char* name, const XML_Char** attributes) {
    auto& head = *static_cast<Head*>(userData);
    if (++head.depth == 2 && std::strcmp(name, "domain") != 0 && std::strcmp(name, "feature") != 0) {
        head.isComplete = true;
        XML_StopParser(head.parser, XML_FALSE);
        return;
    }
    for (; *attributes != nullptr; attributes += 2) {
        if (head.depth == 1 && std::strcmp(attributes[0], "name") == 0) {
            head.name = attributes[1];
        } else {
            head.texts.emplace_back(attributes[0]);
            head.texts.emplace_back(attributes[1]);
        }
    }
}

void XMLCALL endElement(void* userData, const XML_Char*) {
    --static_cast<Head*>(userData)->depth;
}

std::vector<std::string> modelFiles(const char* folder) {
    std::vector<std::string> names;
    DIR* const entries = opendir(folder);
    while (const dirent* const entry = entries == nullptr ? nullptr : readdir(entries)) {
        const std::size_t length = std::strlen(entry->d_name);
        if (length > 4 && std::strcmp(entry->d_name + length - 4, ".xml") == 0) {
            names.push_back(std::string(folder) + '/' + entry->d_name);
        }
    }
    if (entries != nullptr) {
        closedir(entries);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool read(const std::string& file, Head& head) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    XML_ParserReset(head.parser, nullptr);
    XML_SetUserData(head.parser, &head);
    XML_SetElementHandler(head.parser, startElement, endElement);
    char block[blockSize];
    while (!head.isComplete) {
        const ssize_t size = ::read(descriptor, block, sizeof block);
        if (size <= 0 ||
            (XML_Parse(head.parser, block, static_cast<int>(size), XML_FALSE) != XML_STATUS_OK && !head.isComplete)) {
            break;
        }
    }
    close(descriptor);
    return head.isComplete;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3 || dlopen(arguments[1], RTLD_NOW) == nullptr) {
        return 2;
    }
    const XML_Parser parser = XML_ParserCreate(nullptr);
    std::vector<Head> heads;
    for (const std::string& file : modelFiles(arguments[2])) {
        Head head;
        head.parser = parser;
        if (!read(file, head)) {
            return 1;
        }
        heads.push_back(std::move(head));
    }
    XML_ParserFree(parser);
    for (const Head& head : heads) {
        std::puts(head.name.c_str());
    }
}
