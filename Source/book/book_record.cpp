// Records in files, byte by byte, so that the machine's own byte order does not matter.

#include "book/book_record.h"

#include <algorithm>
#include <cerrno>
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
    reader.block.resize(std::fread(reader.block.data(), 1, BLOCK_SIZE, reader.file.get()));
    reader.next = 0;
    return reader.block.size() >= RECORD_SIZE;
}

bool write_block(RecordWriter& writer) {
    const std::size_t size = writer.block.size();
    const bool written = std::fwrite(writer.block.data(), 1, size, writer.file.get()) == size;
    writer.block.clear();
    return written;
}

}  // namespace

RecordReader open_records(const std::string& path, int first) {
    RecordReader reader;
    if (may_hold_records(path)) reader.file.reset(std::fopen(path.c_str(), "rb"));
    if (first > 0 && reader &&
        std::fseek(reader.file.get(), long{first} * long{RECORD_SIZE}, SEEK_SET) != 0) {
        reader.file.reset();
    }
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

bool read_failed(const RecordReader& reader) { return std::ferror(reader.file.get()) != 0; }

RecordWriter create_records(const std::string& path) {
    return {OwnedFile(std::fopen(path.c_str(), "wb")), {}};
}

bool write_record(RecordWriter& writer, const BookRecord& record) {
    u8 bytes[RECORD_SIZE] = {};
    put16(bytes, record.key.key16);
    put32(bytes + 2, record.key.key32);
    put16(bytes + 6, record.losses);
    put16(bytes + 8, record.wins);
    put16(bytes + 10, record.draws);
    writer.block.insert(writer.block.end(), bytes, bytes + RECORD_SIZE);
    return writer.block.size() < BLOCK_SIZE || write_block(writer);
}

bool close_records(RecordWriter& writer) {
    const bool written = write_block(writer);
    const int error = errno;
    const bool closed = std::fclose(writer.file.release()) == 0;
    if (!written) errno = error;
    return written && closed;
}

}  // namespace quon
