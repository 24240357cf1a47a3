print("script of load " .. loads .. " sees " .. #Space:AllObjects() .. " object")
wait()
print("never: the next load deletes this object first")
