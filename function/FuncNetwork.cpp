#include "FuncNetwork.h"


FuncNetwork::FuncNetwork()
    : GroupFamily(0x10B0000, "OOB-Network",
                  "VORADrv Network Get Cap: unable to update an empty object with an empty object") {}

void FuncNetwork::createIPSONetworkPackage() {}
