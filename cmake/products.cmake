# The products that the page installs for: the plug-in's name, which also names the bundle, and the data
# folder's name. The first is the default.
set(TAVENHALL_PRODUCTS
  "Tessaphon:TANVO"
  "Lumaweave:DOVA"
  "Bassoria:DOVA"
  "TemporaQX:DOVA")

# The languages of the bundles' strings, by the names of their folders.
set(TAVENHALL_LANGUAGES en de fr es it ja zh-Hans)
