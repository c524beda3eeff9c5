// Text output: escaping of stored bytes for JSON and XML, and a small JSON
// writer that emits keys exactly in the order the caller gives them.
#ifndef CPDUMP_TEXTOUT_H
#define CPDUMP_TEXTOUT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cpdump {

// Stored values are bytes in whatever charset the document declared. Valid
// UTF-8 passes through; every byte that is not part of a valid UTF-8 sequence
// is shown as the four characters \xNN, so nothing is lost or guessed.
std::string EscapeJson(std::string_view bytes);
std::string EscapeXml(std::string_view bytes);

class JsonWriter {
   public:
    explicit JsonWriter(std::string *out) : out_(out) {}

    void BeginObject() { Open('{'); }
    void BeginObject(std::string_view key) { Key(key), Open('{'); }
    void EndObject() { Close('}'); }
    void BeginArray() { Open('['); }
    void BeginArray(std::string_view key) { Key(key), Open('['); }
    void EndArray() { Close(']'); }

    void String(std::string_view value);
    void String(std::string_view key, std::string_view value) { Key(key), String(value); }
    void Number(std::uint64_t value);
    void Number(std::string_view key, std::uint64_t value) { Key(key), Number(value); }
    void Null();
    void Null(std::string_view key) { Key(key), Null(); }
    void Bool(std::string_view key, bool value);

    // A key whose value follows with the next call.
    void Key(std::string_view key);

    // Ends the document with a line break; the nesting must be closed.
    void Finish();

   private:
    void BeforeValue();
    void Open(char bracket);
    void Close(char bracket);
    void Indent();

    std::string *out_;
    struct Level {
        bool empty = true;
    };
    std::vector<Level> levels_;
    bool after_key_ = false;
};

}  // namespace cpdump

#endif  // CPDUMP_TEXTOUT_H
