// The defaults: what a start reads, what a set costs the main thread, what a write costs a worker.
#include "Base/PropertyList.h"
#include "Platform/DefaultsFormat.h"
#include "Platform/FileDefaultsStore.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>

namespace Bralto {
namespace {

QVariantMap values(qlonglong count)
{
    QVariantMap map;
    for (qlonglong index = 0; index < count; ++index)
        map.insert("session:/home/ann/projects/" + QString::number(index),
                   QVariantMap{{"tabs", QVariantList{QString("file:/a"), QString("web:b")}},
                               {"active", QString("file:/a")}});
    return map;
}

void encodeDefaults(benchmark::State& state)
{
    const QVariantMap map = values(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(DefaultsFormat::encode(map));
}
BENCHMARK(encodeDefaults)->Arg(100)->Arg(8000);

void decodeDefaults(benchmark::State& state)
{
    const QByteArray text = DefaultsFormat::encode(values(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(DefaultsFormat::decode(text));
    state.SetBytesProcessed(int64_t(state.iterations()) * text.size());
}
BENCHMARK(decodeDefaults)->Arg(100)->Arg(8000);

/// How often this process has read from a file, by the kernel's count.
qint64 readCalls()
{
    std::ifstream file("/proc/self/io");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("syscr: "))
            return std::stoll(line.substr(7));
    }
    return 0;
}

/// What a model pays on the main thread: memory only. `files` is how many reads of files there were
/// for one of a default.
void readDefault(benchmark::State& state)
{
    const QTemporaryDir folder;
    FileDefaultsStore store(folder.path(), "benchmark");
    for (qlonglong index = 0; index < 1000; ++index)
        store.set("zoom." + QString::number(index), 1.0);
    const QString key = "zoom.500";
    const qint64 before = readCalls();
    const qint64 ofCounting = readCalls() - before;
    for (auto _ : state)
        benchmark::DoNotOptimize(store.number(key));
    const qint64 calls = readCalls() - before - 2 * ofCounting;
    state.counters["files"] = double(calls) / double(state.iterations());
}
BENCHMARK(readDefault);

/// A change that reaches the disk before the next one, in a domain of that many keys.
void synchroniseDefault(benchmark::State& state)
{
    const QTemporaryDir folder;
    FileDefaultsStore store(folder.path(), "benchmark");
    for (qlonglong index = 0; index < state.range(0); ++index)
        store.set("key" + QString::number(index), index);
    store.synchronise();
    qlonglong next = 0;
    for (auto _ : state) {
        store.set("changing", ++next);
        store.synchronise();
    }
}
BENCHMARK(synchroniseDefault)->Arg(10)->Arg(8000)->Unit(benchmark::kMicrosecond);

/// A thousand changes in one turn, with the one write that they share.
void burstOfDefaults(benchmark::State& state)
{
    const QTemporaryDir folder;
    FileDefaultsStore store(folder.path(), "benchmark");
    qlonglong next = 0;
    for (auto _ : state) {
        for (int index = 0; index < 1000; ++index)
            store.set("key" + QString::number(index), ++next);
        store.synchronise();
    }
}
BENCHMARK(burstOfDefaults)->Unit(benchmark::kMicrosecond);

void decodePropertyList(benchmark::State& state)
{
    PropertyList::Entries entries;
    for (int index = 0; index < 16; ++index)
        entries.append({"Key" + QString::number(index), QString("A value of a bundle")});
    const QByteArray xml = PropertyList::encode(entries);
    for (auto _ : state)
        benchmark::DoNotOptimize(PropertyList::decode(xml));
}
BENCHMARK(decodePropertyList);

} // namespace
} // namespace Bralto
