-- Asks for what a launcher was recorded to ask for (the log of bench/mirror), in its order, at REPLAY_RATE requests a
-- second over all connections. REPLAY_CLOSE gives each request a connection of its own.
local requests = {}
for line in io.lines(os.getenv("REPLAY_LOG")) do
  local tag, path = line:match('^%S+ %S+ %S+ %S+ "(.-)" (%S+)$')
  if path then
    local headers = { ["User-Agent"] = "wrk" }
    if tag ~= "-" then headers["If-None-Match"] = tag:gsub("\\x22", '"') end
    if os.getenv("REPLAY_CLOSE") then headers["Connection"] = "close" end
    requests[#requests + 1] = { path = path, headers = headers }
  end
end

local mean = 1000 * tonumber(os.getenv("REPLAY_CONNECTIONS")) / tonumber(os.getenv("REPLAY_RATE"))
local at = 0

function delay() return math.floor(2 * mean * math.random()) end

function request()
  at = at % #requests + 1
  return wrk.format("GET", requests[at].path, requests[at].headers)
end
