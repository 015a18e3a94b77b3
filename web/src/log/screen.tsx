export function LogScreen() { return null; }
