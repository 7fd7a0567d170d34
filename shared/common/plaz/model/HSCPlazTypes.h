#pragma once

#include <cstdint>
#include <string>
#include <utility>

/// The vocabulary that every part of the hub shares.
namespace HSCPlazTypes {

/// What a store holds. The gap before UNKNOWN is kept for kinds to come.
enum StoreType : std::int32_t { BOARD = 0, CED = 1, UNKNOWN = 7 };

/// How a repository authenticates its users.
enum AUTHMODE : std::int32_t { NONE = 0, BASIC = 1, OAUTH_1_0 = 2, OAUTH_2_0 = 3, SSH = 4, AWS_SIGNATURE = 5 };

/// What a store's repository is kept with.
enum HSCPlazRepoType : std::int32_t { GIT = 0 };

/// Where an item's installed files came from. The hub knows LOCAL alone; other values are for whoever sets them.
enum ItemSource : std::int32_t { LOCAL = 0 };

/// What went wrong, filled in for the user interface; never thrown.
struct HSCPlazException {
    HSCPlazException() = default;
    HSCPlazException(std::string msg, std::int32_t code, std::int32_t context)
        : error_msg(std::move(msg)), error_code(code), error_context(context) {}

    std::string error_msg;          ///< text for people; empty when nothing failed
    std::int32_t error_code = 0;    ///< 0 when nothing failed
    std::int32_t error_context = 0; ///< qualifies the code
};

} // namespace HSCPlazTypes
