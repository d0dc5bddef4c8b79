#pragma once

#include <QtTest>

#include <cstdint>
#include <random>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Gives a fuzz target \a file cut at every byte, and \a rounds copies of it with a few bytes changed: the same ones in
/// every run.
inline void replayMutations(const QByteArray &file, int rounds)
{
    const auto run = [](const QByteArray &bytes) {
        return LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                                      static_cast<std::size_t>(bytes.size()));
    };
    for (int length = 0; length <= file.size(); ++length)
        QCOMPARE(run(file.left(length)), 0);
    std::mt19937 random(1);
    for (int round = 0; round < rounds; ++round) {
        QByteArray changed = file;
        for (auto change = random() % 4 + 1; change > 0; --change) {
            const auto choice = random() % 4;
            const char value = choice == 0 ? '\0' : choice == 1 ? '\xff' : choice == 2 ? '\x01' : char(random() % 256);
            changed[int(random() % unsigned(changed.size()))] = value;
        }
        QCOMPARE(run(changed), 0);
    }
}
