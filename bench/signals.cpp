// SPDX-License-Identifier: MIT
// Emitting a signal to 0, 1 and 8 slots, and connecting one slot. The yardstick is the cheapest
// thing that survives a slot that connects or disconnects others: a counted snapshot of a vector.
#include "ula/foundation/util/Signal.h"

#include <QObject>
#include <benchmark/benchmark.h>
#include <boost/signals2.hpp>
#include <functional>
#include <memory>
#include <sigc++/sigc++.h>
#include <vector>

namespace {

std::uint64_t callCount;

void slot() {
    ++callCount;
    benchmark::ClobberMemory();
}

}  // namespace

class QtSender : public QObject {
    Q_OBJECT
Q_SIGNALS:
    void changed();
};

class QtReceiver : public QObject {
    Q_OBJECT
public Q_SLOTS:
    void onChanged() { slot(); }
};

namespace {

struct Ours {
    tav::util::Signal0 signal;

    void connect() { signal.connect(slot); }
    void connectAndDisconnect() { signal.connect(slot).disconnect(); }
    void emitNow() { signal.emit(); }
};

struct Snapshot {
    using Slots = std::vector<std::function<void()>>;
    std::shared_ptr<const Slots> slots = std::make_shared<const Slots>();

    void connect() {
        Slots next = *slots;
        next.emplace_back(slot);
        slots = std::make_shared<const Slots>(std::move(next));
    }
    void disconnect() {
        Slots next = *slots;
        next.pop_back();
        slots = std::make_shared<const Slots>(std::move(next));
    }
    void connectAndDisconnect() {
        connect();
        disconnect();
    }
    void emitNow() {
        const std::shared_ptr<const Slots> current = slots;
        for (const auto& function : *current)
            function();
    }
};

struct Sigc {
    sigc::signal<void> signal;

    void connect() { signal.connect(sigc::ptr_fun(slot)); }
    void connectAndDisconnect() {
        sigc::connection connection = signal.connect(sigc::ptr_fun(slot));
        connection.disconnect();
    }
    void emitNow() { signal.emit(); }
};

struct Qt {
    QtSender sender;
    std::vector<std::unique_ptr<QtReceiver>> receivers;

    QMetaObject::Connection connectTo(const QtReceiver* receiver) {
        return QObject::connect(&sender, &QtSender::changed, receiver, &QtReceiver::onChanged);
    }
    void connect() {
        receivers.push_back(std::make_unique<QtReceiver>());
        connectTo(receivers.back().get());
    }
    void connectAndDisconnect() {
        if (receivers.empty())
            receivers.push_back(std::make_unique<QtReceiver>());
        QObject::disconnect(connectTo(receivers.back().get()));
    }
    void emitNow() { Q_EMIT sender.changed(); }
};

struct BoostSignals2 {
    boost::signals2::signal<void()> signal;

    void connect() { signal.connect(slot); }
    void connectAndDisconnect() { signal.connect(slot).disconnect(); }
    void emitNow() { signal(); }
};

template <class Signal>
void emit(benchmark::State& state) {
    Signal signal;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        signal.connect();
    callCount = 0;
    for (auto _ : state)
        signal.emitNow();
    if (callCount != static_cast<std::uint64_t>(state.range(0) * state.iterations()))
        state.SkipWithError("not every slot was called");
}

template <class Signal>
void connect(benchmark::State& state) {
    Signal signal;
    for (auto _ : state)
        signal.connectAndDisconnect();
}

template <class Signal>
void registerAll(const std::string& name) {
    benchmark::RegisterBenchmark(("emit/" + name).c_str(), emit<Signal>)->Arg(0)->Arg(1)->Arg(8);
    benchmark::RegisterBenchmark(("connect/" + name).c_str(), connect<Signal>);
}

const bool kRegistered = [] {
    registerAll<Ours>("ula");
    registerAll<Snapshot>("snapshot");
    registerAll<Sigc>("sigc");
    registerAll<Qt>("Qt");
    registerAll<BoostSignals2>("Signals2");
    return true;
}();

}  // namespace

#include "signals.moc"
