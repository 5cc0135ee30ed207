#include "FuncNetwork.h"

#include "function/Family.h"
#include "network/Vora4Network.h"

Function* FuncNetwork::instance() {
    static Function* remembered = nullptr;
    return voradrv::CreateForLibrary<Vora4Network, void, void>(remembered);
}

FuncNetwork::FuncNetwork()
    : GroupFamily(0x10B0000, "OOB-Network",
                  "VORADrv Network Get Cap: unable to update an empty object with an empty object") {}

void FuncNetwork::createIPSONetworkPackage() {}
