"""Asks the database of the demo in Python; run by examples/demo.sh."""

import dbapi

with dbapi.connect("demo") as lab:
    t = lab.values("$DEVNAME", "W", "L", "ID_absmax", query="W=[3u,10u];L<=0.5u", distinct=True)
    print(t)
    print("largest:", t["$DEVNAME"][t["ID_absmax"].argmax()], "with", t["ID_absmax"].max(), "A")
    for curve in lab.curves("IND.VG", "OUTD.ID", query="$DEVNAME=nfet_01v8_w0p36u_l0p15u_m1")[:2]:
        print("VD =", curve.parameters["VD"], "up to", curve.y.max(), "A")
    try:
        lab.values("W", query="Widht=5u")
    except dbapi.QueryError as error:
        print(str(error).splitlines()[-1])
