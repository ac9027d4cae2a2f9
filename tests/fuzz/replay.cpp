// Stands in for the fuzzer where there is none: gives each file of the folders named, and each of those cut
// short at every length, to the target once.
#include <QDirIterator>
#include <QFile>
#include <cstdint>
#include <cstdio>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

// A heap block of exactly this size, so that a sanitizer sees every step outside.
void runOn(QByteArrayView bytes) {
    const std::vector<uint8_t> block(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(block.data(), block.size());
}

} // namespace

int main(int argc, char** argv) {
    constexpr qsizetype kMostCuts = 400;
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        QDirIterator entries(QFile::decodeName(argv[i]), QDir::Files);
        while (entries.hasNext()) {
            QFile file(entries.next());
            if (!file.open(QIODevice::ReadOnly))
                return 1;
            const QByteArray bytes = file.readAll();
            runOn(bytes);
            for (qsizetype cut = 0; cut < qMin(bytes.size(), kMostCuts); ++cut)
                runOn(QByteArrayView(bytes).first(cut));
            ++files;
        }
    }
    std::printf("%d files\n", files);
    return files ? 0 : 1;
}
