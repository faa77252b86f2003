// The event bus, a formatted message to a logger, and the timing logger.
#include "BenchTable.h"

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXLogger.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXTaskEvent.h>
#include <dunx/DUNXTimingLogger.h>
#include <dunx/DUNXTrace.h>

#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>

#include <memory>

namespace {

// The floor of a dispatch to three listeners: three calls through a vtable.
struct Handler {
    virtual ~Handler() = default;
    virtual void Handle(int& value) = 0;
};

// Three different overriders, so that the compiler cannot guess the one
// target of the calls and inline it.
struct AddOne : Handler {
    void Handle(int& value) override { value += 1; }
};
struct AddTwo : Handler {
    void Handle(int& value) override { value += 2; }
};
struct Double : Handler {
    void Handle(int& value) override { value *= 2; }
};

void threeVirtualCalls(benchmark::State& state) {
    AddOne a;
    AddTwo b;
    Double c;
    Handler* handlers[3] = {&a, &b, &c};
    int value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(handlers); // the compiler must not know their types
        for (Handler* handler : handlers)
            handler->Handle(value);
    }
    benchmark::DoNotOptimize(value);
}

struct EmptyListener : DUNXEventListener {
    void HandleEvent(DUNXEvent&) override {}
};

// Listeners on the process-wide bus for the length of one benchmark.
class OnBus {
public:
    explicit OnBus(DUNXEventListener* listener) : m_Listener(listener) {
        DUNXEventBus::GetEventBus().AddListener(listener);
    }
    ~OnBus() { DUNXEventBus::GetEventBus().RemoveListener(m_Listener); }
    OnBus(const OnBus&) = delete;
    OnBus& operator=(const OnBus&) = delete;

private:
    DUNXEventListener* m_Listener;
};

class NullStream : public DUNXOutputStream {
public:
    int write(const char*, int count) override { return count; }
};

const bool registered = [] {
    const std::string event = "event without text to 3 listeners";
    bench::Add(event, bench::kLimit, threeVirtualCalls);
    bench::Add(event, bench::kLibrary, [](benchmark::State& state) {
        EmptyListener a, b, c;
        OnBus onA(&a), onB(&b), onC(&c);
        DUNXEvent fired("BenchEvent", DUNXLevelInfo);
        for (auto _ : state)
            DUNXEventBus::Fire(fired);
    });

    const std::string message = "Printf(\"value %d\") to a logger";
    bench::Add(message, bench::kLimit, threeVirtualCalls);
    bench::Add(message, bench::kLibrary, [](benchmark::State& state) {
        DUNXLogger logger;
        logger.Initialize(new NullStream, DUNXLevelInfo);
        int i = 0;
        for (auto _ : state)
            DUNXInfo::Printf("value %d", ++i);
        logger.Finalize();
    });
    bench::Add(message, bench::kPeer, [](benchmark::State& state) {
        spdlog::logger logger("bench", std::make_shared<spdlog::sinks::null_sink_st>());
        int i = 0;
        for (auto _ : state)
            logger.info("value {}", ++i);
    });

    const std::string timing = "timing: start/end task pair";
    auto firePair = [] {
        DUNXStartTaskEvent::Fire("Read File", "ReadFile", DUNXLevelVerbose);
        DUNXEndTaskEvent::Fire(DUNI_S_SUCCESS, "Read File", "ReadFile", DUNXLevelVerbose, true);
    };
    bench::Add(timing, bench::kLimit, [firePair](benchmark::State& state) {
        EmptyListener empty;
        OnBus on(&empty);
        for (auto _ : state)
            firePair();
    });
    bench::Add(timing, bench::kLibrary, [firePair](benchmark::State& state) {
        DUNXTimingLogger logger;
        logger.Initialize();
        OnBus on(&logger);
        for (auto _ : state)
            firePair();
    });
    return true;
}();

} // namespace
