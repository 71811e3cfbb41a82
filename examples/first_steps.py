"""Asks the database of the demo in Python; run by examples/demo.sh."""

import dbapi

with dbapi.connect("demo") as lab:
    t = lab.values("$DEVNAME", "W", "L", "ID_absmax", query="W=[3u,10u];L<=0.15u;ID_absmax>1m", distinct=True)
    print(t)
    print("largest:", t["$DEVNAME"][t["ID_absmax"].argmax()], "with", t["ID_absmax"].max(), "A")
    for curve in lab.curves("IND.VG", "OUTD.ID", query="$DEVNAME=nfet_01v8_w0p36u_l0p15u_m1")[:2]:
        print("VD =", curve.parameters["VD"], "up to", curve.y.max(), "A")
    try:
        lab.values("W", query="ID_absmx>1m")
    except dbapi.QueryError as error:
        print("\n".join(str(error).splitlines()[-3:]))
