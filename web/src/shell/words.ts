import { defineWords } from '../words/language.js';

export const words = defineWords({
  more: ['More', '更多', '更多'],
  title: ['TessarLorn', 'TessarLorn', 'TessarLorn'],
  main: ['Main', '主导航', '主導覽'],
  skip: ['Skip to the work', '跳到正文', '跳到正文'],
  logIn: ['Log in', '登录', '登入'],
  logOut: ['Log out', '退出登录', '登出'],
  user: ['User', '用户名', '使用者名稱'],
  password: ['Password', '密码', '密碼'],
  wrongLogin: ['The name or the password is wrong.', '用户名或密码错误。', '使用者名稱或密碼錯誤。'],
  language: ['Language', '语言', '語言'],
  theme: ['Appearance', '外观', '外觀'],
  themeSystem: ['As the system', '跟随系统', '跟隨系統'],
  themeLight: ['Light', '浅色', '淺色'],
  themeDark: ['Dark', '深色', '深色'],
  findOrder: ['Find an order by any of its numbers', '按任意编号查找订单', '按任意編號查找訂單'],
  keys: ['Keys', '快捷键', '快捷鍵'],
  keysHelp: ['Show the keys', '显示快捷键', '顯示快捷鍵'],
  keyFind: ['Find an order', '查找订单', '查找訂單'],
  keyGo: ['Go to orders, shelf, packing desk', '转到订单、拣货、打包台', '轉到訂單、揀貨、打包台'],
  noSuchScreen: ['There is no such screen.', '没有此页面。', '沒有此頁面。'],
});
