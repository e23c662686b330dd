#ifndef CLIENT_READER_H
#define CLIENT_READER_H

#include <map>
#include <string>
#include <vector>

namespace TevFuzz {

/// The words that the SFTP client makes of one command that it is given, which must be one line of no more than it
/// reads at once, whose words hold no pattern and no comment.
std::vector<std::string> commandWords(const std::string& command);

/// The words that the client makes of an option's value.
std::vector<std::string> optionWords(const std::string& value);

/// What the client is called with.
struct ClientCall {
    /// Takes the program and its arguments apart as the client does. All must be known to it, with one value for each,
    /// and none but the host may stand after the options.
    explicit ClientCall(const std::vector<std::string>& words);

    std::map<std::string, std::string> options;  ///< those of "-o", by keyword
    std::string host;                            ///< without brackets
    bool isVerbose = false;
};

}  // namespace TevFuzz

#endif
