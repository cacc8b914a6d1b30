// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Feeds a fuzz target the inputs of its kept corpus, without a fuzzer and with any compiler.

#include "fuzz/Target.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

int failed(const QString& why)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(why));
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS-FOLDER\n", argv[0]);
        return 2;
    }
    const QDir corpus(QFile::decodeName(argv[1]));
    const QStringList names = corpus.entryList(QDir::Files, QDir::Name);
    if (names.isEmpty())
        return failed(QStringLiteral("no inputs in %1").arg(corpus.path()));
    for (const QString& name : names) {
        QFile file(corpus.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            return failed(QStringLiteral("can't read %1: %2").arg(file.fileName(), file.errorString()));
        const QByteArray bytes = file.readAll();
        std::fprintf(stderr, "%s\n", qUtf8Printable(name));
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                               static_cast<std::size_t>(bytes.size()));
    }
    std::fprintf(stderr, "%d inputs\n", names.size());
    return 0;
}
