#ifndef FLOOR_H
#define FLOOR_H

#include <Poco/Mutex.h>

#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "DalOamSpiManagedObject.h"
#include "Framework.h"

namespace TevBench {

/// The work that the component's contract asks for, and no more: no log, no lifecycle, no table, arguments that are
/// always right. Thread-safe but for the construction.
class Floor {
public:
    /// One model, as the contract has it.
    struct Record {
        std::string schemaId;
        std::string identifier;
        std::string baseModelIdentifier;
        std::string version;
        std::string baseModelVersion;
        std::string completeFileName;
        std::string fileName;
        const char** selectedModelOptions = nullptr;
    };

    /// Reads the repository, as a start does.
    explicit Floor(Framework& host);
    ~Floor();
    Floor(const Floor&) = delete;
    Floor& operator=(const Floor&) = delete;

    const std::vector<Record>& catalogue() const { return records; }

    /// The seconds that the reading took.
    double startSeconds() const { return seconds; }

    void join(unsigned long txHandle) const;
    void finish(unsigned long txHandle);
    void* newMoIterator(unsigned long txHandle, const char* parentDn, const char* className);
    char* nextMo(void* iterator);
    DalMoAttributeValueContainer* getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName);

    /// Whether a DN names the parent of instances, or an instance: a copy of it, searched for the pattern's literals.
    static bool isParentDn(const char* dn);
    static bool isSchemaDn(const char* dn);

private:
    struct Transaction {
        std::list<void*> memoryBlocks;
        std::vector<void*> iteratorHandles;
    };

    void start();
    int find(std::string schemaId) const;  // the index, or -1
    void fill(Record& record, DalOamSpiMrMomHandle_4T mom) const;
    void addMemory(unsigned long txHandle, void* block);
    template <class T>
    T* allocate(unsigned long txHandle, std::size_t count);
    char* copy(unsigned long txHandle, const char* text);
    DalMoAttributeValueContainer* empty(unsigned long txHandle);
    DalMoAttributeValueContainer* single(unsigned long txHandle, const std::string& text);
    DalMoAttributeValueContainer* list(unsigned long txHandle, const char* const* entries);

    Framework& framework;
    double seconds = 0;
    std::vector<Record> records;
    Poco::Mutex mutex;
    std::map<unsigned long, Transaction> transactions;
    std::map<void*, std::pair<unsigned int, unsigned long>> iterators;
};

}  // namespace TevBench

#endif
