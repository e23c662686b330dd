#include <arpa/inet.h>

#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "ExportParameters.h"
#include "FakeResolver.h"
#include "FakeRunner.h"
#include "LogToNowhere.h"
#include "MemoryFile.h"
#include "Pattern.h"
#include "Pieces.h"
#include "RegisteredComponent.h"
#include "Require.h"

// The input is a call of "export": the shape of its parameters, DN, action, password and URI, or the pieces of which a
// URI is made: user, host, port and path. Every call ends as its arguments say, and what was put into a URI comes out
// at the runner.

namespace {

using namespace TevFuzz;
using TevTest::FakeRunner;
using TevTest::Parameter;

using Messages = std::vector<std::pair<std::int32_t, std::string>>;

const MemoryFile modelFile;

/// One export, with everything around it that is there for it alone.
class Call {
public:
    Call(const std::uint8_t* data, std::size_t size) : pieces(data, size) {
        shape = text();
        dn = text();
        action = text();
        password.reset(text());
        uri.reset(text());
        if (uri.text.empty()) {
            makeUri();
        }
    }

    void check();

private:
    /// A text as it comes over the tables: up to a null character.
    std::string text() { return pieces.next().c_str(); }

    struct Given : Parameter {
        Given() : Parameter("") {}
        void reset(const std::string& value) {
            text = value;
            cell.theString = text.data();
        }
    };

    void makeUri();
    void shapeParameter(std::size_t which, Parameter& parameter);
    TevReturnT codeOfArguments() const;
    void checkTransfer(TevReturnT code) const;
    void checkRunner(const FakeRunner::Arguments& arguments) const;
    void checkMessages(const Messages& expected) const;

    Pieces pieces;
    std::string shape;  ///< how each parameter departs from one string, if it does; "f" in it: the runner fails
    std::string dn;
    std::string action;
    Given password;
    Given uri;
    bool isMade = false;  ///< the URI, of these:
    std::string user;
    std::string host;
    std::string port;
    std::string path;

    std::array<DalMoAttributeValueContainer*, 4> parameters{&uri.container, &password.container, nullptr, nullptr};
    RegisteredComponent component;
    TevTest::FakeResolver resolver;
    FakeRunner runner;
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* result = &untouched;
};

/// `text` with all but letters, digits and `kept` percent-encoded.
std::string encoded(const std::string& text, const std::string& kept) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < 0x80 && std::isalnum(byte) != 0) || kept.find(c) != std::string::npos) {
            result += c;
        } else {
            result += {'%', digits[byte / 16], digits[byte % 16]};
        }
    }
    return result;
}

bool isIpv6(const std::string& host) {
    in6_addr address{};
    return inet_pton(AF_INET6, host.c_str(), &address) == 1;
}

void Call::makeUri() {
    static const Pattern hosts("^[a-z0-9.:]+$");
    isMade = true;
    user = encoded(pieces.next(), "-._~");
    host = pieces.next();
    if (!hosts.matches(host)) {
        host = "10.0.0.1";
    }
    port = std::to_string(std::strtoul(pieces.next().c_str(), nullptr, 10) % 65536);
    path = "/" + pieces.next();
    const bool isBracketed = host.find(':') != std::string::npos;
    uri.reset("sftp://" + user + (user.empty() ? "" : "@") + (isBracketed ? "[" + host + "]" : host) +
              (port == "0" ? "" : ":" + port) + encoded(path, "-._~/"));
    host = isIpv6(host) ? "[" + host + "]" : host;
}

void Call::shapeParameter(std::size_t which, Parameter& parameter) {
    switch (which < shape.size() ? shape[which] : 's') {
        case '-':
            parameters[which] = nullptr;
            break;
        case 'z':
            parameter.cell.theString = nullptr;
            break;
        case '2':
            parameter.container.nrOfValues = 2;
            break;
        case 'v':
            parameter.container.values = nullptr;
            break;
        case 't':
            parameter.container.type = DalMoTypeReference;
            break;
        case '+':
            parameters[2] = &parameter.container;
            break;
        default:
            break;
    }
}

TevReturnT Call::codeOfArguments() const {
    static const Pattern schemas("^ManagedElement=.*,SystemFunctions=.*,SysM=.*,Schema=.*");
    const auto isGood = [](const Parameter& parameter) {
        return parameter.container.type == DalMoTypeString && parameter.container.nrOfValues == 1 &&
               parameter.container.values != nullptr && parameter.cell.theString != nullptr;
    };
    if (!schemas.matches(dn) || action != "export" || parameters[0] == nullptr || parameters[1] == nullptr ||
        parameters[2] != nullptr || !isGood(uri)) {
        checkMessages({});
        return TevReturnInvalidArgument;
    }
    if (!isGood(password)) {
        checkMessages({{1, "sftp requires password"}});
        return TevReturnInvalidArgument;
    }
    const std::string id = dn.substr(dn.rfind('=') + 1);
    if (id != "Mom") {
        checkMessages({{1, "Internal error"}});
        return id == "Gone" ? TevReturnFailure : TevReturnNotFound;
    }
    return TevReturnOk;
}

void Call::checkMessages(const Messages& expected) const {
    require(component.host.messages() == expected, "the operator is told what happened, and that once");
}

void Call::checkRunner(const FakeRunner::Arguments& arguments) const {
    // The debug switch may be in a configuration file of the machine.
    const auto& [program, userText, passwordText, hostText, portText, transfer, local, remote, debug, ciphers, kex,
                 macs, timeout, dscp] = arguments;
    static_cast<void>(debug);
    requireEqual(program, "/usr/bin/sftp", "the program");
    requireEqual(passwordText, password.text, "the password");
    requireEqual(transfer, 1, "the action");
    requireEqual(local, modelFile.path(), "the local file");
    require(ciphers.empty() && kex.empty() && macs.empty() && dscp == 0, "there are no settings");
    requireEqual(timeout, 180000, "the time-out");
    static const Pattern ports("^(0|[1-9][0-9]{0,4})$");
    require(ports.matches(portText) && std::stol(portText) < 65536, "the port is a number of a port");
    require(userText.empty() || uri.text.find(userText + "@") != std::string::npos, "the user is the URI's");
    if (isMade) {
        requireEqual(userText, user, "the user of a URI made of pieces");
        requireEqual(hostText, host, "its host");
        requireEqual(portText, port, "its port");
        requireEqual(remote, path, "its path");
    }
}

void Call::checkTransfer(TevReturnT code) const {
    static const Pattern sftp("^[sS][fF][tT][pP]:");
    if (runner.constructed.empty()) {
        require(!isMade, "a URI made of pieces is understood");
        requireEqual(code, TevReturnFailure, "the code for a bad URI");
        const Messages messages = component.host.messages();
        requireEqual(messages.size(), 1U, "the number of messages about it");
        const bool isSyntax = messages[0].second == "The URI in the export action could not be parsed";
        require(isSyntax || (!sftp.matches(uri.text) && messages[0].second.rfind("Unsupported URI schema: ", 0) == 0),
                "the operator is told that the URI is bad");
        return;
    }
    require(sftp.matches(uri.text), "only sftp is supported");
    requireEqual(runner.constructed.size(), 1U, "the number of runners");
    requireEqual(runner.executions, 1U, "the number of transfers");
    requireEqual(runner.alive, 0U, "the number of runners that are left");
    checkRunner(runner.constructed[0]);
    requireEqual(code, runner.code, "the code of a transfer");
    checkMessages({{1, runner.code == 0 ? "File transfer successful" : "SFTP error: " + runner.errorMessage}});
}

void Call::check() {
    runner.code = shape.find('f') == std::string::npos ? 0 : 17;
    runner.errorMessage = "it failed";
    shapeParameter(0, uri);
    shapeParameter(1, password);
    component.host.models = {TevTest::FakeModel{"Gone"}, TevTest::FakeModel{"Mom"}};
    component.host.models[1].file = modelFile.path();
    requireEqual(component.start(), TevReturnOk, "the code of start");

    const TevReturnT code = component.objects().action(7, dn.c_str(), action.c_str(), parameters.data(), &result);
    const TevReturnT expected = codeOfArguments();
    if (expected == TevReturnOk) {
        checkTransfer(code);
    } else {
        requireEqual(code, expected, "the code of the arguments");
        require(runner.constructed.empty(), "there is no transfer with bad arguments");
    }
    require((result == &untouched) == (code != TevReturnOk), "only a success has a result");
    require(code != TevReturnOk || (result->type == DalMoTypeVoid && result->nrOfValues == 0), "the result is void");
    requireEqual(resolver.held(), 0U, "the number of address lists that are left");
    requireEqual(component.resource().finish(7), TevReturnOk, "the code of finish");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const LogToNowhere log;
    Call(data, size).check();
    return 0;
}
