#include "LifeTest.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "ExportParameters.h"
#include "FileText.h"
#include "Portal.h"

namespace TevTest {

namespace {

using testing::ElementsAreArray;

constexpr const char* transportDn = "ManagedElement=1,Transport=1";
constexpr const char* oamBulkDn = "ManagedElement=1,Transport=1,ServiceCategory=OamBulk";

}  // namespace

LifeTest::LifeTest() {
    component->terminate();  // each life begins with a registration of its own
    FakeModel full{"Full", "2", "1", "5"};
    full.orva = {{"orvaMomName", "Base"}, {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}, {"orvaMomCorrection", "6"}};
    full.features = {"Alpha", "Beta"};
    full.file = folder.write("Full.xml", "<mom name=\"Full\"/>");
    host.models = {full, FakeModel{"Plain"}};
    host.objects = {"ManagedElement=1",
                    transportDn,
                    oamBulkDn,
                    "ManagedElement=1,SystemFunctions=1",
                    "ManagedElement=1,SystemFunctions=1,SecM=1",
                    sshDn};
    dscp.theUint8 = 10;
    host.setAttribute(oamBulkDn, "dscp", {DalMoTypeUint8, 1, &dscp});
    host.setTexts(sshDn, "selectedCiphers", {"aes128-ctr", "aes256-ctr"});
    host.setTexts(sshDn, "selectedKeyExchanges", {"curve25519-sha256"});
    host.setTexts(sshDn, "selectedMacs", {"hmac-sha2-256"});
    Tev::Portal::setAccessor(host.accessor());
}

LifeTest::~LifeTest() {
    Tev::Portal::setAccessor(nullptr);
}

Life LifeTest::live() {
    forget();
    Life life;
    takeCall(life, "init", [this] { return init(configuration.c_str()); });
    take(
        life, "start", [this] { return call("start", [this] { return start(); }); }, [this] { expectNotStarted(); });
    const DalOamSpiTransactionalResource_2& table = resource();
    takeCall(life, "join", [&] { return table.join(txHandle); });
    take(life, "list", [this] { return list(); });
    life["instances"] = shown(keys);
    for (const std::string& key : keys) {
        for (const char* const attribute :
             {"schemaId", "identifier", "baseModelIdentifier", "version", "baseModelVersion", "selectedModelOptions"}) {
            take(life, "read " + key + " " + attribute, [&] { return read(life, key, attribute); });
        }
    }
    if (std::count(keys.begin(), keys.end(), "Full") == 1) {
        take(life, "export Full", [&] { return exportFull(life); });
    }
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // no client is left
    takeCall(life, "prepare", [&] { return table.prepare(txHandle); });
    takeCall(life, "commit", [&] { return table.commit(txHandle); });
    takeCall(life, "finish", [&] { return table.finish(txHandle); });
    expectNothingHeld();
    takeCall(life, "stop", [this] { return stop(); });
    takeCall(life, "terminate", [this] {
        component->terminate();
        return TevReturnT{TevReturnOk};
    });
    return life;
}

Values LifeTest::errors() const {
    Values texts;
    for (const LogRecord& record : log.records()) {
        if (record.type == "LOG" && record.level <= 4) {
            texts.push_back(record.text);
        }
    }
    return texts;
}

TevReturnT LifeTest::call(const std::string&, const Step& entryPoint) {
    return entryPoint();
}

std::string LifeTest::shown(const Values& values) {
    return testing::PrintToString(values);
}

void LifeTest::take(Life& life, const std::string& name, const Step& step, const std::function<void()>& between) {
    const TevReturnT code = step();
    life[name] = std::to_string(code);
    if (code != 0) {
        if (between) {
            between();
        }
        EXPECT_EQ(step(), 0) << "the second attempt to " << name;
    }
}

TevReturnT LifeTest::list() {
    keys.clear();
    const DalOamSpiManagedObject_1& table = objects();
    void* iterator = nullptr;
    TevReturnT code =
        call("newMoIterator", [&] { return table.newMoIterator(txHandle, parentDn, "Schema", &iterator); });
    EXPECT_EQ(iterator == nullptr, code != 0);
    for (char* key = nullptr; code == 0;) {
        code = call("nextMo", [&] { return table.nextMo(iterator, &key); });
        if (key == nullptr) {
            return code;
        }
        EXPECT_EQ(code, 0);
        keys.emplace_back(key);
    }
    return code;
}

TevReturnT LifeTest::read(Life& life, const std::string& key, const char* attribute) {
    const std::string dn = dnOf(key);
    const DalOamSpiManagedObject_1& table = objects();
    DalMoAttributeValueContainer* container = nullptr;
    const TevReturnT code = call("read " + key + " " + attribute,
                                 [&] { return table.getMoAttribute(txHandle, dn.c_str(), attribute, &container); });
    EXPECT_EQ(container == nullptr, code != 0);
    Values values;
    for (std::uint32_t i = 0; container != nullptr && i < container->nrOfValues; ++i) {
        values.emplace_back(container->values[i].theString);
    }
    life[key + " " + attribute] = shown(values);
    return code;
}

TevReturnT LifeTest::exportFull(Life& life) {
    const std::string copy = folder.path() / "copy";
    const std::string dn = dnOf("Full");
    ExportParameters parameters("sftp://tester@127.0.0.1" + copy, "secret");
    const std::size_t messagesBefore = host.messages().size();
    const DalOamSpiManagedObject_1& table = objects();
    DalMoAttributeValueContainer* result = nullptr;
    const TevReturnT code =
        call("export Full", [&] { return table.action(txHandle, dn.c_str(), "export", parameters.array, &result); });
    life["Full result"] = result == nullptr ? "none" : "type " + std::to_string(result->type);
    life["Full copy"] = contents(copy);
    for (const char* const option : {"-oIPQoS", "-oCiphers", "-oKexAlgorithms", "-oMACs"}) {
        life[std::string("Full ") + option] = client.option(option);
    }
    Values messages;
    for (std::size_t i = messagesBefore; i < host.messages().size(); ++i) {
        messages.push_back(host.messages()[i].second);
    }
    life["Full messages"] = shown(messages);
    std::filesystem::remove(copy);
    return code;
}

void LifeTest::expectNotStarted() {
    void* iterator = nullptr;
    const LogCapture silent(0);
    EXPECT_EQ(objects().newMoIterator(txHandle, parentDn, "Schema", &iterator), 2);
    EXPECT_EQ(stop(), 0);
}

void LifeTest::expectNothingHeld() {
    const LogCapture capture;
    EXPECT_EQ(resource().finish(txHandle), 0);
    EXPECT_THAT(capture.records(), ElementsAreArray(nothingHeld(txHandle)));
}

}  // namespace TevTest
