// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Runs a fuzz target on the inputs of its corpus, without libFuzzer.

#include "fuzz/Target.h"

#include <QDir>
#include <QFile>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS-FOLDER\n", argv[0]);
        return 2;
    }
    const QDir corpus(QFile::decodeName(argv[1]));
    const QStringList names = corpus.entryList(QDir::Files, QDir::Name);
    require(!names.isEmpty(), "the corpus has inputs");
    for (const QString& name : names) {
        QFile file(corpus.filePath(name));
        require(file.open(QIODevice::ReadOnly), "an input can be read");
        const QByteArray bytes = file.readAll();
        std::fprintf(stderr, "%s\n", qUtf8Printable(name));
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                               static_cast<std::size_t>(bytes.size()));
    }
    std::fprintf(stderr, "%d inputs\n", names.size());
    return 0;
}
