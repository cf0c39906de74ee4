#!/usr/bin/python3
"""An independent Modbus TCP server for the client's tests: holding registers from START
hold the given 16-bit values, served on 127.0.0.1:PORT until the process is killed. Every
read of holding registers is written to standard output as "read ADDRESS COUNT", so that
the test sees how its requests were split.

Usage: pymodbus_server.py PORT START VALUE...
"""

import logging
import sys

from pymodbus.datastore import (ModbusSequentialDataBlock, ModbusServerContext,
                                ModbusSlaveContext)
from pymodbus.server import StartTcpServer


class LoggedBlock(ModbusSequentialDataBlock):
    """Holding registers that say which of them each read asked for."""

    def getValues(self, address, count=1):
        print(f"read {address} {count}", flush=True)
        return super().getValues(address, count)


def main():
    port, start = int(sys.argv[1]), int(sys.argv[2])
    values = [int(v) for v in sys.argv[3:]]
    # Clients that come and go are this server's normal life, not errors worth a line.
    logging.getLogger("pymodbus").setLevel(logging.CRITICAL)
    # zero_mode: the address in a request is the index in the block, as on the wire.
    slave = ModbusSlaveContext(hr=LoggedBlock(start, values), zero_mode=True)
    StartTcpServer(context=ModbusServerContext(slaves=slave, single=True),
                   address=("127.0.0.1", port))


if __name__ == "__main__":
    main()
