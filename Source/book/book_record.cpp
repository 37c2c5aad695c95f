// Records in files, byte by byte, so that the machine's own byte order does not matter.

#include "book/book_record.h"

#include <algorithm>
#include <filesystem>
#include <limits>

#include "platform/events.h"
#include "platform/file_map.h"

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

constexpr std::size_t BLOCK_SIZE = 4096 * RECORD_SIZE;

// Every record has a number, and its place is a distance that can be sought.
constexpr auto MAX_RECORDS = std::min<u64>(std::numeric_limits<int>::max(),
                                           std::numeric_limits<long>::max() / long{RECORD_SIZE});

// Pipes, devices and what standard input holds are no books.
bool may_hold_records(const std::string& path) {
    if (!readable_file(path) || is_standard_input(path)) return false;
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return !error && size / RECORD_SIZE <= MAX_RECORDS;
}

// False at the end of the file or of its last whole record.
bool read_block(RecordReader& reader) {
    reader.block.resize(BLOCK_SIZE);
    reader.block.resize(reader.file.read(reader.block.data(), BLOCK_SIZE));
    reader.next = 0;
    return reader.block.size() >= RECORD_SIZE;
}

void write_block(RecordWriter& writer) {
    writer.file.write(writer.block.data(), writer.block.size());
    writer.block.clear();
}

}  // namespace

RecordReader open_records(const std::string& path, int first) {
    RecordReader reader;
    if (!may_hold_records(path) || !reader.file.open(path, FileMode::READ)) return reader;
    if (first > 0) reader.file.seek(long{first} * long{RECORD_SIZE});
    if (reader.file.failed()) reader.file.close();
    return reader;
}

bool read_record(RecordReader& reader, BookRecord& record) {
    if (reader.block.size() - reader.next < RECORD_SIZE && !read_block(reader)) return false;
    const u8* const bytes = reader.block.data() + reader.next;
    reader.next += RECORD_SIZE;
    record = {
        {get16(bytes), get32(bytes + 2)}, get16(bytes + 6), get16(bytes + 8), get16(bytes + 10)};
    return true;
}

bool read_failed(const RecordReader& reader) { return reader.file.failed(); }

RecordWriter create_records(const std::string& path) {
    RecordWriter writer;
    static_cast<void>(writer.file.open(path, FileMode::WRITE));
    return writer;
}

bool write_record(RecordWriter& writer, const BookRecord& record) {
    u8 bytes[RECORD_SIZE] = {};
    put16(bytes, record.key.key16);
    put32(bytes + 2, record.key.key32);
    put16(bytes + 6, record.losses);
    put16(bytes + 8, record.wins);
    put16(bytes + 10, record.draws);
    writer.block.insert(writer.block.end(), bytes, bytes + RECORD_SIZE);
    if (writer.block.size() >= BLOCK_SIZE) write_block(writer);
    return !writer.file.failed();
}

bool close_records(RecordWriter& writer) {
    write_block(writer);
    writer.file.close();
    return !writer.file.failed();
}

}  // namespace quon
