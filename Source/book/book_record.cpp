// Records in files, byte by byte, so that the machine's own byte order does not matter.

#include "book/book_record.h"

namespace quon {

namespace {

u16 get16(const u8* bytes) { return u16(bytes[0] | bytes[1] << 8); }
u32 get32(const u8* bytes) { return u32{get16(bytes + 2)} << 16 | get16(bytes); }

void put16(u8* bytes, u16 value) {
    bytes[0] = u8(value);
    bytes[1] = u8(value >> 8);
}
void put32(u8* bytes, u32 value) {
    put16(bytes, u16(value));
    put16(bytes + 2, u16(value >> 16));
}

}  // namespace

BookFile open_for_reading(const std::string& path) {
    return BookFile(std::fopen(path.c_str(), "rb"));
}

BookFile open_for_writing(const std::string& path) {
    return BookFile(std::fopen(path.c_str(), "wb"));
}

bool read_record(std::FILE* file, BookRecord& record) {
    u8 bytes[RECORD_SIZE];
    if (std::fread(bytes, RECORD_SIZE, 1, file) != 1) return false;
    record = {
        {get16(bytes), get32(bytes + 2)}, get16(bytes + 6), get16(bytes + 8), get16(bytes + 10)};
    return true;
}

bool write_record(std::FILE* file, const BookRecord& record) {
    u8 bytes[RECORD_SIZE] = {};
    put16(bytes, record.key.key16);
    put32(bytes + 2, record.key.key32);
    put16(bytes + 6, record.losses);
    put16(bytes + 8, record.wins);
    put16(bytes + 10, record.draws);
    return std::fwrite(bytes, RECORD_SIZE, 1, file) == 1;
}

}  // namespace quon
