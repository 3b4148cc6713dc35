// SPDX-License-Identifier: MIT
// Stands in for the fuzzing engine in the tests: feeds one target every file of its corpus, and each of them
// cut short.
#include <cstdio>

#include <QDir>
#include <QFile>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size);

int main(int argc, char **argv)
{
    const QDir corpus(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    const QStringList names = corpus.entryList(QDir::Files);
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            return 1;
        const QByteArray bytes = file.readAll();
        for (qsizetype size = bytes.size(); size >= 0; size -= 1 + bytes.size() / 64)
            LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char *>(bytes.constData()), size_t(size));
    }
    std::printf("%d files\n", int(names.size()));
    return names.isEmpty() ? 1 : 0;
}
