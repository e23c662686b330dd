#ifndef LIFE_TEST_H
#define LIFE_TEST_H

#include <functional>
#include <map>
#include <string>

#include "ContractTest.h"
#include "FakeClient.h"
#include "TempFolder.h"

namespace TevTest {

/// What a host sees of a component's life: the outcome of each step, by name.
using Life = std::map<std::string, std::string>;

/// A host and whole lives of the component in it, from `dalLCMinit` to `dalLCMterminate`, in which the model "Full",
/// which has everything, and the model "Plain", which has nothing, are listed and read, and "Full" is exported. The
/// host tries a step that fails once more.
class LifeTest : public ContractTest {
protected:
    static constexpr const char* sshDn = "ManagedElement=1,SystemFunctions=1,SecM=1,Ssh=1";

    LifeTest();
    ~LifeTest() override;

    /// Lives a life. What has to succeed whatever fails is expected here, a step's second attempt above all; the
    /// records and calls are those of this life.
    Life live();

    /// The texts of the errors and warnings of the life.
    Values errors() const;

    /// How values stand in a life.
    static std::string shown(const Values& values);

    using Step = std::function<TevReturnT()>;

    /// Calls an entry point in the step `name`, a listing being the steps "newMoIterator" and "nextMo" here. Whatever
    /// is to fail in the component does so in this call.
    virtual TevReturnT call(const std::string& name, const Step& entryPoint);

private:
    /// Carries out a step and notes its code; after a failure does `between`, and the step again.
    static void take(Life& life, const std::string& name, const Step& step, const std::function<void()>& between = {});

    /// The same for a step that is one call.
    void takeCall(Life& life, const std::string& name, const Step& entryPoint) {
        take(life, name, [&] { return call(name, entryPoint); });
    }

    TevReturnT list();
    TevReturnT read(Life& life, const std::string& key, const char* attribute);
    TevReturnT exportFull(Life& life);
    void expectNotStarted();

    /// Expects that the component keeps nothing of the transaction, which is finished; its debug trace tells.
    void expectNothingHeld();

    static constexpr unsigned long txHandle = 815;
    const TempFolder folder;
    const std::string configuration =
        folder.write("libtev_schema_populator.cfg",
                     "<Configuration><TevSchemaMoService><sftpTimeout>60000</sftpTimeout></TevSchemaMoService>"
                     "</Configuration>");
    const EnvironmentVariable configurationFolder{"TEV_CONFIG_DIR", folder.path().string()};
    const FakeClient client;
    DalMoAttributeValue dscp{};
    Values keys;  // as the life's listing gave them
};

}  // namespace TevTest

#endif
