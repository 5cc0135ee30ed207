#include "NetworkItems.h"

namespace voradrv::network {

namespace {

// By board value id - 0x12000. The labels' spellings are the published
// names hosts match on ("Mofified getway IP", "Current getway IP"); the
// name server entries stand between the sub mask and the gateway.
const ItemInfo kItems[16] = {
    {"Network control", Form::Number, "", "rw", 18},
    {"Network status", Form::Number, "", "r", 255},
    {"Network host name", Form::HostName, "", "rw", 0},
    {"Network MAC address", Form::Mac, "HEX", "rw", 0},
    {"Modified device IP", Form::Address, "DEC", "rw", 0},
    {"Modified sub mask", Form::Address, "DEC", "rw", 0},
    {"Modified domain name server IP", Form::Address, "DEC", "rw", 0},
    {"Mofified getway IP", Form::Address, "DEC", "rw", 0},
    {"Current device IP", Form::Address, "DEC", "r", 0},
    {"Current sub mask", Form::Address, "DEC", "r", 0},
    {"Current domain name server IP", Form::Address, "DEC", "r", 0},
    {"Current getway IP", Form::Address, "DEC", "r", 0},
    {"Network error code", Form::Number, "", "r", 0},
    {"Server type", Form::Number, "", "r", 2},
    {"Server domain name", Form::ServerName, "", "r", 0},
    {"Server IP/Port", Form::AddressPort, "DEC", "r", 0},
};

}  // namespace

const ItemInfo& Item(uint32_t boardValueId) { return kItems[(boardValueId - kFirstValue) & 0xF]; }

}  // namespace voradrv::network
