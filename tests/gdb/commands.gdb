set width 0
set print address off
set print static-members off
set filename-display basename
set debuginfod enabled off
set startup-with-shell off
set disable-randomization off
break look
run
echo \n---- a frame\n
backtrace -no-filters 1
up-silently
echo ---- in another language\n
set language c
print negative
print missing
set language auto
echo ---- values\n
info locals
echo ---- on lines of their own\n
set print pretty on
print contact
set print pretty off
echo ---- as it lies in memory\n
print/r saved
echo ---- what cannot be\n
up-silently
print impossible
print notANumber.value
print identifierGarbage.value
print anyGarbage.value
print choiceGarbage.value
print recordOfZeros.value
echo ---- survived\n
print dataGarbage.value
print recordGarbage.value
print *(kestrel::Contact*)1
