#ifndef EXPORT_TEST_H
#define EXPORT_TEST_H

#include <string>
#include <utility>
#include <vector>

#include "ContractTest.h"
#include "EnvironmentVariable.h"
#include "ExportParameters.h"
#include "FakeResolver.h"
#include "FakeRunner.h"
#include "FakeTransaction.h"
#include "TempFolder.h"

namespace TevTest {

/// The component started over one model, "Mom", whose file is there. The host offers its router, which has no object,
/// to the common library too; the configuration file tells nothing.
class ExportTest : public ContractTest {
protected:
    using Messages = std::vector<std::pair<std::int32_t, std::string>>;

    ExportTest();
    ~ExportTest() override;

    static constexpr const char* uri = "sftp://admin@10.0.0.1:2222/tmp/f";

    /// Registers and starts the component anew, with the path of a configuration file.
    void restart(const std::string& path);
    void restart() { restart(configuration); }

    /// Exports "Mom" in the transaction 815, which is finished at the end; what a success gives is in `result`.
    TevReturnT exportTo(const std::string& destination, const std::string& password = "secret");

    TevReturnT act(const std::string& dn, const char* actionName, DalMoAttributeValueContainer** parameters) {
        return objects().action(txHandle, dn.c_str(), actionName, parameters, &result);
    }

    /// Exports "Mom" and gives what the runner was made with; fails the test when that was not once.
    FakeRunner::Arguments argumentsOf(const std::string& destination = uri, const std::string& password = "secret");

    /// The runner's arguments for `uri`, when there are no settings and "Mom" is exported.
    FakeRunner::Arguments plainArguments() const;

    /// Whether `result` is as it was before any call.
    bool isResultUntouched() const { return result == &untouched; }

    /// What this function logs for an error and for a warning.
    static Records error(const std::string& function, const std::string& text) {
        return message(3, moImplFile, function, text);
    }
    static Records warning(const std::string& function, const std::string& text) {
        return message(4, moImplFile, function, text);
    }

    /// Expects `records` from an export to `destination` at `level`, and none at the level below.
    void expectRecordsFromLevel(int level, const std::string& destination, const Records& records);

    static constexpr unsigned long txHandle = 815;
    TempFolder folder;
    const std::string file = folder.write("Mom.xml", "<mom name=\"Mom\"/>");
    const std::string configuration =
        folder.write("libtev_schema_populator.cfg", "<Configuration><TevSchemaMoService/></Configuration>");
    const EnvironmentVariable configurationFolder{"TEV_CONFIG_DIR", folder.path().string()};
    FakeResolver resolver;
    FakeRunner runner;
    FakeTransaction transactions;
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* result = &untouched;
};

}  // namespace TevTest

#endif
