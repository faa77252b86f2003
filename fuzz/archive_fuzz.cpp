// The archive reader over arbitrary bytes: every restore operation, in an order
// the bytes choose, must either deliver or throw DUNXArchiveException*.
#include <dunx/DUNXArchive.h>
#include <dunx/DUNXInputStream.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1)
        return 0;
    // The first byte picks the operations, the rest is the archive.
    const std::uint8_t plan = data[0];
    DUNXMemoryInputStream stream(reinterpret_cast<const char*>(data + 1),
                                 static_cast<int>(size - 1));
    DUNXArchive archive(&stream);
    std::vector<double> doubles(16);
    std::vector<float> floats(16);
    std::vector<int> ints(16);
    for (int step = 0; step < 64; ++step) {
        try {
            DUNXString text("kept");
            unsigned short tag = 0;
            double d = 0;
            float f = 0;
            long l = 0;
            switch ((plan + step) % 9) {
            case 0:
                archive.RestoreCString(text);
                break;
            case 1:
                archive.RestoreCount();
                break;
            case 2:
                archive.RestoreClassObject(text, &tag);
                break;
            case 3:
                archive.RestoreClassObject("CPart", &tag);
                break;
            case 4:
                archive >> d >> f >> l;
                break;
            case 5:
                archive.Read(doubles.data(), static_cast<int>(doubles.size()));
                break;
            case 6:
                archive.Read(floats.data(), static_cast<int>(floats.size()));
                break;
            case 7:
                archive.Read(ints.data(), static_cast<int>(ints.size()));
                break;
            default:
                archive.RestoreClassObject(text, nullptr);
                break;
            }
            if (archive.GetBytesRead() > size - 1)
                std::abort(); // more bytes counted than the input holds
        } catch (DUNXArchiveException* fault) {
            const int code = fault->GetCode();
            delete fault;
            if (code != DUNXArchiveShortRead && code != DUNXArchiveNaN)
                std::abort();
            if (code == DUNXArchiveShortRead)
                return 0;
        }
    }
    return 0;
}
