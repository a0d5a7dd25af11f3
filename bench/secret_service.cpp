// SPDX-License-Identifier: MIT
// The Secret Service, in a session of the program's own, against libsecret itself and QtKeychain.
#include "bench/QtApplication.h"
#include "bench/ScratchFolder.h"
#include "tests/support/SecretSession.h"
#include "ula/SecureData.h"

#include <QEventLoop>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <libsecret/secret.h>
#include <memory>
#include <qt5keychain/keychain.h>

namespace {

using tav::ula::FastString;

class Session {
public:
    static Session& instance() {
        static Session session;
        return session;
    }

private:
    Session() {
        setenv("HOME", _folder.path(), 1);
        setenv("XDG_DATA_HOME", _folder.path(), 1);
        setenv("XDG_RUNTIME_DIR", _folder.path(), 1);
        setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
        _session = std::make_unique<tav::test::SecretSession>();
    }

    tav::bench::ScratchFolder _folder;
    std::unique_ptr<tav::test::SecretSession> _session;
};

void getWithUla(benchmark::State& state) {
    Session::instance();
    const FastString name("Mail"), account("ann"), qualifier("bench");
    FastString password;
    tav::ula::addToKeychain(name, account, "a password", qualifier);
    for (auto _ : state) {
        if (!tav::ula::getFromKeychain(name, account, password, qualifier))
            state.SkipWithError("not found");
    }
}

void addWithUla(benchmark::State& state) {
    Session::instance();
    long item = 0;
    for (auto _ : state) {
        const FastString name("New " + std::to_string(++item));
        if (!tav::ula::addToKeychain(name, "ann", "a password", "bench"))
            state.SkipWithError("not added");
        state.PauseTiming();
        tav::ula::deleteKeychain(name, "ann", "bench");
        state.ResumeTiming();
    }
}

const SecretSchema* schema() {
    static const SecretSchema kSchema = {"ula.Bench",
                                         SECRET_SCHEMA_NONE,
                                         {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                          {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                          {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                         0,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr};
    return &kSchema;
}

bool store(const std::string& name) {
    return secret_password_store_sync(schema(), SECRET_COLLECTION_DEFAULT, name.c_str(),
                                      "a password", nullptr, nullptr, "service", name.c_str(),
                                      "account", "ann", nullptr) != FALSE;
}

void getWithLibsecret(benchmark::State& state) {
    Session::instance();
    store("Mail");
    for (auto _ : state) {
        gchar* const password = secret_password_lookup_sync(schema(), nullptr, nullptr, "service",
                                                            "Mail", "account", "ann", nullptr);
        if (password == nullptr)
            state.SkipWithError("not found");
        secret_password_free(password);
    }
}

void addWithLibsecret(benchmark::State& state) {
    Session::instance();
    long item = 0;
    for (auto _ : state) {
        const std::string name = "New " + std::to_string(++item);
        if (!store(name))
            state.SkipWithError("not added");
        state.PauseTiming();
        secret_password_clear_sync(schema(), nullptr, nullptr, "service", name.c_str(), "account",
                                   "ann", nullptr);
        state.ResumeTiming();
    }
}

/// Its jobs end in an event loop.
template <class Job>
bool perform(Job& job) {
    tav::bench::needQtApplication();
    QEventLoop loop;
    QObject::connect(&job, &QKeychain::Job::finished, &loop, &QEventLoop::quit);
    job.setAutoDelete(false);
    job.setKey("ann");
    job.start();
    loop.exec();
    return job.error() == QKeychain::NoError;
}

void getWithQtKeychain(benchmark::State& state) {
    Session::instance();
    QKeychain::WritePasswordJob writing("Mail");
    writing.setTextData("a password");
    perform(writing);
    for (auto _ : state) {
        QKeychain::ReadPasswordJob reading("Mail");
        if (!perform(reading) || reading.textData() != "a password")
            state.SkipWithError("not found");
    }
}

void addWithQtKeychain(benchmark::State& state) {
    Session::instance();
    long item = 0;
    for (auto _ : state) {
        const QString name = QString("New %1").arg(++item);
        QKeychain::WritePasswordJob writing(name);
        writing.setTextData("a password");
        if (!perform(writing))
            state.SkipWithError("not added");
        state.PauseTiming();
        QKeychain::DeletePasswordJob deleting(name);
        perform(deleting);
        state.ResumeTiming();
    }
}

BENCHMARK(getWithUla)->Name("getFromService/ula")->UseRealTime();
BENCHMARK(getWithLibsecret)->Name("getFromService/libsecret")->UseRealTime();
BENCHMARK(getWithQtKeychain)->Name("getFromService/QtKeychain")->UseRealTime();
BENCHMARK(addWithUla)->Name("addToService/ula")->UseRealTime();
BENCHMARK(addWithLibsecret)->Name("addToService/libsecret")->UseRealTime();
BENCHMARK(addWithQtKeychain)->Name("addToService/QtKeychain")->UseRealTime();

}  // namespace
