#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "BareClient.h"
#include "ExportParameters.h"
#include "Framework.h"
#include "Row.h"
#include "Rows.h"
#include "SftpServer.h"
#include "StartedComponent.h"
#include "Stopwatch.h"
#include "TempFolder.h"

namespace TevBench {

namespace {

/// One model whose file has `size` bytes, the component, and a server to send it to.
class Transfers {
public:
    explicit Transfers(std::size_t size)
        : fileSize(size),
          framework({modelOf(folder.write("model.xml", std::string(size, 'x')))}),
          component(framework) {
        setenv("TEV_STATE_DIR", folder.path().c_str(), 1);
        exportAtOnce(1);  // the first transfer meets a server that has not served yet, and an unknown host key
    }
    Transfers(const Transfers&) = delete;
    Transfers& operator=(const Transfers&) = delete;

    /// The seconds that `count` exports at once take.
    double exportAtOnce(std::size_t count) {
        return secondsOfAll(count, [this](std::size_t number) {
            TevTest::ExportParameters parameters(
                "sftp://" + server.user() + '@' + server.host() + ':' + server.port() + remotePath(number),
                server.password());
            DalMoAttributeValueContainer* result = nullptr;
            component.join(number);
            const TevReturnT code = component.objects().action(
                number, "ManagedElement=1,SystemFunctions=1,SysM=1,Schema=model", "export", parameters.array, &result);
            component.finish(number);
            return code == TevReturnOk;
        });
    }

    /// The seconds that `count` bare clients at once take, each doing one `upload`.
    double uploadAtOnce(std::size_t count, void (*upload)(const Tev::TransferSettings&)) {
        return secondsOfAll(count, [this, upload](std::size_t number) {
            const Tev::TransferSettings settings{"/usr/bin/sftp",
                                                 server.user(),
                                                 server.password(),
                                                 server.host(),
                                                 server.port(),
                                                 1,
                                                 framework.models().front().file,
                                                 remotePath(number),
                                                 false,
                                                 "",
                                                 "",
                                                 "",
                                                 0,
                                                 0};
            try {
                upload(settings);
                return true;
            } catch (const std::exception& e) {
                std::cerr << e.what() << '\n';
                return false;
            }
        });
    }

private:
    static BenchModel modelOf(const std::string& file) {
        BenchModel model;
        model.name = "model";
        model.file = file;
        return model;
    }

    std::string remotePath(std::size_t number) const { return server.folder() / std::to_string(number); }

    /// Each transfer makes a file of its own on the server; nothing may be there before, and all of it after.
    template <class Transfer>
    double secondsOfAll(std::size_t count, const Transfer& transfer) {
        std::atomic<std::size_t> done{0};
        const double seconds = secondsOfThreads(count, [&](std::size_t number) { done += transfer(number) ? 1 : 0; });
        for (std::size_t number = 0; number < count; ++number) {
            if (done != count || std::filesystem::file_size(remotePath(number)) != fileSize) {
                throw std::runtime_error("a transfer fails");
            }
            std::filesystem::remove(remotePath(number));
        }
        return seconds;
    }

    const std::size_t fileSize;
    TevTest::TempFolder folder;
    TevTest::SftpServer server;
    Framework framework;
    StartedComponent component;
};

void addExportRow(const std::string& name, Target target, std::size_t size, std::size_t count,
                  void (*upload)(const Tev::TransferSettings&)) {
    addLongRow(name, target, 1, [=] {
        const auto transfers = std::make_shared<Transfers>(size);
        return Sides{[=] { return transfers->exportAtOnce(count); },
                     [=] { return transfers->uploadAtOnce(count, upload); }};
    });
}

}  // namespace

void addExportRows() {
    constexpr std::size_t kilobyte = 1000;
    constexpr std::size_t megabyte = 1000 * kilobyte;
    addExportRow("export, 10 kB", atMost(1.1), 10 * kilobyte, 1, BareClient::upload);
    addExportRow("export, 1 MB", atMost(1.1), megabyte, 1, BareClient::upload);
    addExportRow("export, 100 MB", atMost(1.1), 100 * megabyte, 1, BareClient::upload);
    addExportRow("export, 10 kB, against default options", noTarget(), 10 * kilobyte, 1, BareClient::uploadPlainly);
    addExportRow("export, 1 MB, against default options", noTarget(), megabyte, 1, BareClient::uploadPlainly);
    addExportRow("export, 100 MB, against default options", noTarget(), 100 * megabyte, 1, BareClient::uploadPlainly);
    addExportRow("8 exports of 1 MB at once", atMost(1.1), megabyte, 8, BareClient::upload);
}

}  // namespace TevBench
