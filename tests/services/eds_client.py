"""Another program that uses Evolution Data Server: `add TITLE START-IN-MINUTES [RRULE]`, `remove UID`, `list`."""

import sys
import time

import gi

gi.require_version("ECal", "2.0")
gi.require_version("EDataServer", "1.2")
gi.require_version("ICalGLib", "3.0")
from gi.repository import ECal, EDataServer, ICalGLib  # noqa: E402

registry = EDataServer.SourceRegistry.new_sync(None)
WITHOUT_WAITING_FOR_NETWORK = 0xFFFFFFFF
client = ECal.Client.connect_sync(registry.ref_default_calendar(), ECal.ClientSourceType.EVENTS,
                                  WITHOUT_WAITING_FOR_NETWORK, None)
command = sys.argv[1]
if command == "add":
    start = time.localtime(time.time() + 60 * int(sys.argv[3]))
    rule = f"RRULE:{sys.argv[4]}\r\n" if len(sys.argv) > 4 else ""
    event = ICalGLib.Component.new_from_string(
        f"BEGIN:VEVENT\r\nSUMMARY:{sys.argv[2]}\r\n"
        f"DTSTART;TZID=Europe/Amsterdam:{time.strftime('%Y%m%dT%H%M%S', start)}\r\nDURATION:PT1H\r\n{rule}"
        "LOCATION:Room 4\r\nEND:VEVENT\r\n")
    print(client.create_object_sync(event, ECal.OperationFlags.NONE, None)[1])
elif command == "remove":
    client.remove_object_sync(sys.argv[2], None, ECal.ObjModType.ALL, ECal.OperationFlags.NONE, None)
else:
    for event in client.get_object_list_sync("#t", None)[1]:
        print(event.get_uid(), event.get_dtstart().as_ical_string(), event.get_summary())
