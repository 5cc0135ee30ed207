Writes are checked against the capability document before any reaches the
module, and read back after:

  $ export VORA_SIM_LOG=1
  $ voractl --sim set Backlight/LVDS/Brightness 4294967296
  voractl: cannot set Backlight/LVDS/Brightness to 4294967296: 4294967296 is outside its range 0..100
  [1]
  $ voractl --sim set Brightness 4294967346
  voractl: cannot set Backlight/LVDS/Brightness to 4294967346: 4294967346 is outside its range 0..100
  [1]
  $ voractl --sim set 'Current device IP' 1.2.3.4
  voractl: cannot set OOB-Network/OOBNetwork0/Current device IP to 1.2.3.4: it is read-only
  [1]
  $ voractl --sim set 'Network control=19'
  voractl: cannot set OOB-Network/OOBNetwork0/Network control to 19: 19 is outside its range 0..18
  [1]
  $ voractl --sim set Brightness=x
  voractl: cannot set Backlight/LVDS/Brightness to x: "x" is not an integer, a share of its range (50%) or a step (+10, 10%-)
  [1]
  $ voractl --sim set Brightness
  voractl: set takes NAME=VALUE... or ITEM VALUE
  [2]

A two-state item takes 1, 0 and the words of its own kind, in any case, and
no word of another kind: a row per word, a column per item of each
generation, the state it sets or - where it is refused. NAME=VALUE pairs
are all checked before any is written:

  $ words=(in out high low active inactive on off true false 1 0 HIGH '' 2)
  $ states() {  # GENERATION ITEM...: each word's state on each item
  >   local generation=$1 word item pairs=(); shift
  >   for word in "${words[@]}"; do for item; do pairs+=("$item=$word"); done; done
  >   voractl --sim --sim-generation "$generation" set --json "${pairs[@]}" 2>/dev/null |
  >     awk -v n=$# '/"written"/ { row = row (/": "/ ? " -" : " " $2 + 0); if (++k % n == 0) { print row; row = "" } }'
  > }
  $ paste -d '|' <(printf "%-10s\n" word "${words[@]/#/=}") \
  >   <(echo " Dir Level Backlight"; states 4 GPIO4/Dir GPIO4/Level LVDS/Backlight) \
  >   <(echo " Dir Level"; states 3 GPIO5/Dir GPIO5/Level) \
  >   <(echo " Dir Level Backlight"; states eapi GPIO4/Dir GPIO4/Level 'Backlight 1/Backlight')
  word      | Dir Level Backlight| Dir Level| Dir Level Backlight
  =in       | 1 - -| 1 -| 1 - -
  =out      | 0 - -| 0 -| 0 - -
  =high     | - 1 -| - 1| - 1 -
  =low      | - 0 -| - 0| - 0 -
  =active   | - 1 -| - 1| - 1 -
  =inactive | - 0 -| - 0| - 0 -
  =on       | - - 1| - -| - - 1
  =off      | - - 0| - -| - - 0
  =true     | - - 1| - -| - - 1
  =false    | - - 0| - -| - - 0
  =1        | 1 1 1| 1 1| 1 1 1
  =0        | 0 0 0| 0 0| 0 0 0
  =HIGH     | - 1 -| - 1| - 1 -
  =         | - - -| - -| - - -
  =2        | - - -| - -| - - -
  $ voractl --sim set GPIO4/Dir=out GPIO4/Level=out LVDS/Backlight=in Brightness=5
  voractl: cannot set GPIO/GPIO4/Level to out: "out" is not a level (high/low, active/inactive or 1/0)
  voractl: cannot set Backlight/LVDS/Backlight to in: "in" is not an on/off state (on/off, true/false or 1/0)
  [1]
  $ voractl --sim get GPIO4/Dir Brightness
  GPIO/GPIO4/Dir: in
  Backlight/LVDS/Brightness: 80
  $ voractl --sim set --force GPIO4/Dir=low
  voractl: cannot set GPIO/GPIO4/Dir to low: "low" is not a direction (in/out or 1/0) nor an integer
  [1]

NAME=VALUE pairs, as gpioset takes them; brightness a share of its range or
a step from where it is:

  $ voractl --sim set DO1/Level=high GPIO4/Dir=out 'Backlight/LVDS/Brightness=50%' Polarity=on
  $ voractl --sim get DO1/Level GPIO4/Dir Brightness Polarity
  GPIO/DO1/Level: high
  GPIO/GPIO4/Dir: out
  Backlight/LVDS/Brightness: 50
  Backlight/LVDS/Polarity: on

brightnessctl's forms: a value, a share of the range, a step before or
after its number; a step stops at the range's ends. From 50, on the fourth
generation's panel (0..100) and the third's (10..255), what each form sets,
or - where it is refused (nothing written):

  $ forms=(60 50% +10 -10 10%- 5+ +10% -100% +100% 0x10 010 500 9 10%%- -5+ +-5 %5 '' ' 5' 1e2
  >        99999999999999999999 9223372036854775807+ 9223372036854775807%)
  $ for form in "${forms[@]}"; do
  >   row=$(printf '%-22s|' "=$form")
  >   for generation in 4 3; do
  >     vora() { voractl --sim --sim-generation $generation --quiet "$@"; }
  >     vora set Brightness=50 && vora set "Brightness=$form" 2>/dev/null && row+=" $(vora get Brightness)" || row+=" -($(vora get Brightness))"
  >   done
  >   echo "$row"
  > done
  =60                   | 60 60
  =50%                  | 50 133
  =+10                  | 60 60
  =-10                  | 40 40
  =10%-                 | 40 25
  =5+                   | 55 55
  =+10%                 | 60 75
  =-100%                | 0 10
  =+100%                | 100 255
  =0x10                 | 16 16
  =010                  | 10 10
  =500                  | -(50) -(50)
  =9                    | 9 -(50)
  =10%%-                | -(50) -(50)
  =-5+                  | -(50) -(50)
  =+-5                  | -(50) -(50)
  =%5                   | -(50) -(50)
  =                     | -(50) -(50)
  = 5                   | -(50) -(50)
  =1e2                  | -(50) -(50)
  =99999999999999999999 | -(50) -(50)
  =9223372036854775807+ | 100 255
  =9223372036854775807% | -(50) -(50)
  $ voractl --sim set Brightness=50 && voractl --sim --sim-generation 3 --sim-reset get Brightness
  70

info shows an item as brightnessctl info shows a device, its share of the
range counted from the range's start; --raw in the module's units, limits
too; a pin is its level:

  $ voractl --sim info Brightness DI0 && voractl --sim --sim-generation 3 info Brightness
  Item 'Backlight/LVDS/Brightness' (0x1050501):
  	Current Brightness: 50 (50%) (esc)
  	Max Brightness: 100 (esc)
  	Min Brightness: 0 (esc)
  Item 'GPIO/DI0/Level' (0x1040301):
  	Current Level: high (esc)
  Item 'Backlight/VGA/Brightness' (0x1050501):
  	Current Brightness: 70 (24%) (esc)
  	Max Brightness: 255 (esc)
  	Min Brightness: 10 (esc)
  $ voractl --sim --sim-generation eapi --raw info Temperature/CPU | tail -3
  	Current CPU: 3189 (46%) (esc)
  	Max CPU: 3731 (esc)
  	Min CPU: 2731 (esc)
  $ voractl --sim info --json Brightness | grep '"percent"'
    "percent": 50
  $ voractl --sim set --json 'Modified device IP=192.168.001.010'
  {
    "id": 17498117,
    "path": "OOB-Network/OOBNetwork0/Modified device IP",
    "block": "OOB-Network",
    "group": "OOBNetwork0",
    "name": "Modified device IP",
    "unit": "DEC",
    "access": "rw",
    "value": "192.168.1.10",
    "written": "192.168.001.010",
    "outcome": "written"
  }
  $ voractl --sim get 'Modified device IP'
  192.168.1.10

Addresses, the netmask and the host name are held to their forms before
anything is sent: a refused one is said with its reason, exits 1 and
writes nothing (--force sends it anyway, for the board to judge):

  $ before=$(voractl --sim get OOB-Network)
  $ while IFS='|' read -r name value; do
  >   reason=$(voractl --sim set "$name=$value" 2>&1); status=$?
  >   printf '%-28s %s %s\n' "$name=$value" "[$status]" "$(sed -n 's/.*: "[^"]*" is \(not [^(]*\) (.*/\1/p' <<< "$reason")"
  > done <<'END'
  > Modified device IP|192.168.1
  > Modified device IP|192.168.1.256
  > Modified device IP|192.168.1.10x
  > Modified device IP| 192.168.1.10
  > Modified device IP|+1.2.3.4
  > Modified device IP|1.2.3.4.5
  > Modified device IP|
  > Mofified getway IP|999.1.1.1
  > Modified sub mask|255.0.255.0
  > Modified sub mask|255.255.255.1
  > Modified sub mask|256.0.0.0
  > Network MAC address|00:0b:ab:00:00
  > Network MAC address|00-0b-ab-00-00-01
  > Network MAC address|0:0b:ab:00:00:01
  > Network MAC address|00:0b:ab:00:00:0g
  > Network host name|-bmc
  > Network host name|a_b
  > Network host name|a..b
  > Network host name|abcdefghijabcdefghijabcdefghij12
  > END
  Modified device IP=192.168.1 [1] not an IPv4 address
  Modified device IP=192.168.1.256 [1] not an IPv4 address
  Modified device IP=192.168.1.10x [1] not an IPv4 address
  Modified device IP= 192.168.1.10 [1] not an IPv4 address
  Modified device IP=+1.2.3.4  [1] not an IPv4 address
  Modified device IP=1.2.3.4.5 [1] not an IPv4 address
  Modified device IP=          [1] not an IPv4 address
  Mofified getway IP=999.1.1.1 [1] not an IPv4 address
  Modified sub mask=255.0.255.0 [1] not a netmask
  Modified sub mask=255.255.255.1 [1] not a netmask
  Modified sub mask=256.0.0.0  [1] not a netmask
  Network MAC address=00:0b:ab:00:00 [1] not a MAC address
  Network MAC address=00-0b-ab-00-00-01 [1] not a MAC address
  Network MAC address=0:0b:ab:00:00:01 [1] not a MAC address
  Network MAC address=00:0b:ab:00:00:0g [1] not a MAC address
  Network host name=-bmc       [1] not a host name
  Network host name=a_b        [1] not a host name
  Network host name=a..b       [1] not a host name
  Network host name=abcdefghijabcdefghijabcdefghij12 [1] not a host name
  $ voractl --sim set "Network host name=$(printf 'bmc\033[2J')"
  voractl: cannot set OOB-Network/OOBNetwork0/Network host name to bmc\e[2J: "bmc\e[2J" is not a host name (up to 31 letters, digits, "-" and "."; empty clears it)
  [1]
  $ [ "$(voractl --sim get OOB-Network)" = "$before" ] && echo nothing written
  nothing written

info shows the network as ipmitool lan print does, a netmask with its
prefix length; the numbers of control, status, error code and server type
are the board library's own, shown as it gives them:

  $ voractl --sim info OOB-Network
  Network control                : 1
  Network status                 : 3
  Network host name              : vb4410-bmc
  Network MAC address            : 00:0B:AB:12:34:5F
  Modified device IP             : 192.168.1.10
  Modified sub mask              : 255.255.255.0 (/24)
  Modified domain name server IP : 192.168.10.1
  Mofified getway IP             : 192.168.10.1
  Current device IP              : 192.168.10.20
  Current sub mask               : 255.255.255.0 (/24)
  Current domain name server IP  : 192.168.10.1
  Current getway IP              : 192.168.10.1
  Network error code             : 0
  Server type                    : 1
  Server domain name             : mgmt.plant2.example.net
  Server IP/Port                 : 192.168.10.5:623
  $ voractl --sim set 'Modified sub mask=255.255.0.0' 'Network host name=' 'Network MAC address=00:0B:ab:00:00:02' &&
  >   voractl --sim get 'Modified sub mask' 'Network host name' 'Network MAC address'
  OOB-Network/OOBNetwork0/Modified sub mask: 255.255.0.0
  OOB-Network/OOBNetwork0/Network host name: 
  OOB-Network/OOBNetwork0/Network MAC address: 00:0B:AB:00:00:02

--force sends a value unchecked; the board decides:

  $ voractl --sim set --force Brightness 500
  module: VORADrv set value: function:Backlight set value failed
  voractl: cannot set Backlight/LVDS/Brightness to 500: library status (0xFFFFFEFF)
  [1]
  $ voractl --sim set --force DO1/Level 2 && voractl --sim get DO1/Level
  voractl: GPIO/DO1/Level: wrote 2 H/L, the board reads low
  [1]

A board that refuses a write while answering success is caught reading the
value back; the third generation refuses a brightness below its minimum so:

  $ vora3() { voractl --sim --sim-generation 3 "$@"; }
  $ vora3 set Brightness 5
  voractl: cannot set Backlight/VGA/Brightness to 5: 5 is outside its range 10..255
  [1]
  $ vora3 set --force Brightness 5
  voractl: Backlight/VGA/Brightness: wrote 5, the board reads 70
  [1]
  $ vora3 set --json --force Brightness 5
  voractl: Backlight/VGA/Brightness: wrote 5, the board reads 70
  {
    "id": 17106177,
    "path": "Backlight/VGA/Brightness",
    "block": "Backlight",
    "group": "VGA",
    "name": "Brightness",
    "unit": "Step",
    "access": "rw",
    "value": 70,
    "min": 10.0,
    "max": 255.0,
    "alarm": false,
    "written": 5,
    "outcome": "differs",
    "reason": "wrote 5, the board reads 70"
  }
  [1]
  $ vora3 set --force --type int 0x1050401 0
  module: VORADrv get value: function:Backlight get value failed fffffbff
  voractl: set 0x1050401 to 0, but it cannot be read back: not found (0xFFFFFBFF)
  $ vora3 set --type int 0x1050401 0
  voractl: cannot set 0x1050401 to 0: the capability document does not publish it, so nothing can check the value (--force writes it anyway)
  [1]
