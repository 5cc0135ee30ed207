The export is written for node_exporter's textfile collector: a scrape of
Debian's prometheus-node-exporter, on loopback with only that collector,
carries the board's metrics.

  $ command -v prometheus-node-exporter > /dev/null || exit 80
  $ mkdir textfile
  $ voractl --sim export --format prometheus --output textfile/voradrv.prom
  $ port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
  $ prometheus-node-exporter --web.listen-address=127.0.0.1:$port --collector.disable-defaults \
  >     --collector.textfile --collector.textfile.directory=textfile > exporter.log 2>&1 &
  $ scrape() { python3 -c "import urllib.request; print(urllib.request.urlopen('http://127.0.0.1:$port/metrics').read().decode())"; }
  $ for i in $(seq 100); do scrape > metrics 2>/dev/null && break; sleep 0.1; done
  $ grep -E '^(node_textfile_scrape_error|voradrv_(temperature_celsius|gpio_level|board_info))' metrics | cut -c 1-110
  node_textfile_scrape_error 0
  voradrv_board_info{asset_tag="LINE3-CELL7",bios_name="VoraBIOS",bios_revision="4.10.R07",board_manufacturer="V
  voradrv_gpio_level{pin="DI0"} 1
  voradrv_gpio_level{pin="DI1"} 0
  voradrv_gpio_level{pin="DO0"} 0
  voradrv_gpio_level{pin="DO1"} 1
  voradrv_gpio_level{pin="Front panel button"} 0
  voradrv_gpio_level{pin="GPIO4"} 0
  voradrv_gpio_level{pin="GPIO5"} 1
  voradrv_gpio_level{pin="Relay K1 coil driver, 24 V iso*"} 0
  voradrv_temperature_celsius{sensor="CPU"} 48.5
  voradrv_temperature_celsius{sensor="CPU2"} 39
  voradrv_temperature_celsius{sensor="Chipset"} 41
  voradrv_temperature_celsius{sensor="System"} 35.2
  $ kill %1
